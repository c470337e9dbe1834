#include "gateway/settings_reader.hpp"

#include <iostream>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace xpon::gateway {
namespace {

/// A time in whole units of `Duration`.
template <class Duration>
void add_time(CLI::App& app, const std::string& name, Duration& value, long least, long most, const std::string& text) {
    app.add_option_function<long>(
           name, [&value](long count) { value = Duration(count); }, text)
        ->default_str(std::to_string(value.count()))
        ->check(CLI::Range(least, most));
}

template <class Number>
void add_number(CLI::App& app, const std::string& name, Number& value, Number least, Number most,
                const std::string& text) {
    app.add_option(name, value, text)->capture_default_str()->check(CLI::Range(least, most));
}

void add_options(CLI::App& app, Settings& settings) {
    app.add_option("--listen", settings.listen, "address of this machine that browsers come to")->capture_default_str();
    add_number<std::uint16_t>(app, "--port", settings.port, 0, 65535, "its port; 0: any that is free");
    app.add_option("--certificate", settings.certificate, "PEM file with the certificate and its chain");
    app.add_option("--key", settings.key, "PEM file with the certificate's key");
    app.add_option("--plain-http-everywhere", settings.plain_http_everywhere,
                   "true: speak plain HTTP on other than loopback addresses")
        ->default_str("false");
    app.add_option("--host-names", settings.host_names, "names that browsers may call this machine by")->delimiter(',');
    app.add_option("--pages", settings.pages, "folder of the page's files")->capture_default_str();
    app.add_option("--access-log", settings.access_log, "file; standard output without one");

    add_number<std::uint16_t>(app, "--service-port", settings.service_port, 1, 65535,
                              "port of api_service on 127.0.0.1");
    add_time(app, "--request-timeout", settings.request_timeout, 1, 3600, "seconds until a request is given up");
    add_time(app, "--longest-request-timeout", settings.longest_request_timeout, 1, 3600,
             "seconds that a page may ask for instead");

    add_time(app, "--idle-timeout", settings.idle_timeout, 1, 86400,
             "seconds without an action of its user until a session ends");
    add_time(app, "--absolute-timeout", settings.absolute_timeout, 1, 604800,
             "seconds until a session ends in any case");
    add_number<std::size_t>(app, "--sessions-per-user", settings.sessions_per_user, 1, 1000,
                            "one more ends the least recently used one");
    add_number<std::size_t>(app, "--sessions", settings.sessions, 1, 10000, "of all users");

    add_number<std::size_t>(app, "--body-bytes", settings.body_bytes, 1024, 67108864, "largest body of a request");
    add_number(app, "--requests-per-second", settings.requests_per_second, 0.1, 10000.0,
               "of one session, in the long run");
    add_number(app, "--request-burst", settings.request_burst, 1.0, 10000.0, "of one session, at once");
    add_number<std::size_t>(app, "--waiting-requests", settings.waiting_requests, 1, 1000, "of one session");
    add_number<std::size_t>(app, "--connections", settings.connections, 4, 100000,
                            "of browsers; half of them from one address");
    add_number<std::size_t>(app, "--streams-per-session", settings.streams_per_session, 1, 1000, "event streams");
    add_number<std::size_t>(app, "--watches-per-stream", settings.watches_per_stream, 1, 1000,
                            "requests that one event stream repeats");
    add_time(app, "--shortest-interval", settings.shortest_interval, 10, 3600000,
             "milliseconds between two questions for the same watch");
}

} // namespace

std::optional<Settings> read_settings(int count, char** arguments, int& status) {
    Settings settings;
    bool shows = false;
    CLI::App app("Serves the web console of the OLT and holds its users' sessions.", "olt_console");
    app.set_version_flag("--version", "olt_console " XPON_VERSION);
    app.set_config("--config", "", "file with these settings, NAME = VALUE a line; the command line goes before it");
    app.allow_config_extras(CLI::config_extras_mode::error);
    app.add_flag("--show-settings", shows, "print the settings in force and end")->configurable(false);
    add_options(app, settings);
    status = 0;
    try {
        app.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        status = app.exit(error) == 0 ? 0 : 2;
        return std::nullopt;
    }
    if (shows) {
        std::cout << app.config_to_str(true);
        return std::nullopt;
    }
    return settings;
}

} // namespace xpon::gateway
