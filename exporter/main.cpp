#include "exporter/collection.hpp"
#include "exporter/scrapes.hpp"
#include "exporter/session.hpp"
#include "exporter/web_server.hpp"
#include "xpon/core/unique_fd.hpp"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>

#include <sys/eventfd.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <malloc.h>

namespace {

using namespace xpon::exporter;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds longest_request(5500); // the OLT itself gives up after 5 s

struct Options {
    std::string listen = "9888";
    std::uint16_t service_port = 9999;
    Account account{.user = "viewer", .password_file = {}};
    std::vector<Collector> collectors;
    std::vector<int> pon_ports;
    int interval_ms = 1000;
    int pause_ms = 10;
    int budget_ms = 4000;
    int login_pause_s = 90;
};

void describe(CLI::App& app, Options& options) {
    std::map<std::string, Collector> names;
    for (const auto& row : collectors) {
        names.emplace(row.name, row.collector);
        if (row.is_default) {
            options.collectors.push_back(row.collector);
        }
    }
    app.add_option("--listen", options.listen, "port for scrapes, or ADDRESS:PORT")->capture_default_str();
    app.add_option("--port-of-service", options.service_port, "where api_service listens, on 127.0.0.1")
        ->capture_default_str();
    app.add_option("--user", options.account.user, "account of the OLT with the privilege of a viewer")
        ->capture_default_str();
    app.add_option("--password-file", options.account.password_file,
                   "its first line is the password; mode 0600, or a credential of systemd")
        ->required();
    app.add_option("--collectors", options.collectors,
                   "what is collected (default: all but the counters that ONTs keep by intervals)")
        ->delimiter(',')
        ->transform(CLI::CheckedTransformer(names));
    app.add_option("--pon-ports", options.pon_ports, "PON ports that are collected, such as 1,2,5 (default: all)")
        ->delimiter(',')
        ->check(CLI::Range(1, 255));
    app.add_option("--interval-ms", options.interval_ms,
                   "between collections at least; scrapes that come sooner share one")
        ->check(CLI::Range(0, 3'600'000))
        ->capture_default_str();
    app.add_option("--pause-ms", options.pause_ms, "between requests, for the OLT's other clients")
        ->check(CLI::Range(0, 1000))
        ->capture_default_str();
    app.add_option("--budget-ms", options.budget_ms, "for a collection; what is not asked for by then is absent")
        ->check(CLI::Range(100, 600'000))
        ->capture_default_str();
    app.add_option("--login-pause-s", options.login_pause_s, "how long a refused password is not tried again")
        ->check(CLI::Range(1, 3600))
        ->capture_default_str();
    app.set_version_flag("--version", "olt_exporter " XPON_VERSION);
}

void run(const Options& options, const sigset_t& stop_signals) {
    const xpon::core::UniqueFd stop(eventfd(0, EFD_CLOEXEC));
    Session session(options.service_port, options.account, longest_request, seconds(options.login_pause_s));
    Collection collection({.collectors = {options.collectors.begin(), options.collectors.end()},
                           .pon_ports = options.pon_ports,
                           .pause = milliseconds(options.pause_ms),
                           .budget = milliseconds(options.budget_ms)},
                          session, stop.get());
    Scrapes scrapes([&] { return collection.collect(); }, milliseconds(options.interval_ms));
    const WebServer server(options.listen, scrapes, milliseconds(options.budget_ms) + 3 * longest_request);
    fmt::print("olt_exporter listens on port {}\n", server.port());
    std::fflush(stdout);
    int number = 0;
    sigwait(&stop_signals, &number);
    eventfd_write(stop.get(), 1);
}

} // namespace

int main(int count, char** arguments) {
    // One heap for all threads: a collection is large, and each scrape may be served by another thread.
    mallopt(M_ARENA_MAX, 1);
    CLI::App app("Serves metrics of the OLT to Prometheus.", "olt_exporter");
    Options options;
    describe(app, options);
    CLI11_PARSE(app, count, arguments);
    sigset_t stop_signals;
    sigemptyset(&stop_signals);
    sigaddset(&stop_signals, SIGTERM);
    sigaddset(&stop_signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &stop_signals, nullptr); // for the threads of the server as well
    try {
        run(options, stop_signals);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        fmt::print(stderr, "olt_exporter: {}\n", error.what());
        return EXIT_FAILURE;
    }
}
