#include "gateway/access_log.hpp"
#include "gateway/freed_memory.hpp"
#include "gateway/http/listener.hpp"
#include "gateway/settings_reader.hpp"
#include "gateway/site/site.hpp"

#include <chrono>
#include <csignal>
#include <exception>
#include <iostream>

#include <sys/resource.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <systemd/sd-daemon.h>

namespace {

using namespace xpon::gateway;
namespace asio = boost::asio;

// For the daemon to hear of the logouts; it may be slow, or gone.
constexpr auto farewell_time = std::chrono::milliseconds(500);

/// A descriptor for each connection and some more.
void take_all_descriptors() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

/// The program as it runs, on one thread.
class Console {
public:
    explicit Console(const Settings& settings)
        : log_(settings.access_log), site_(context_, settings),
          setup_{.handle = [this](const auto& request, const auto& respond) { site_.handle(request, respond); },
                 .log = log_,
                 .body_bytes = settings.body_bytes},
          listener_(context_, settings, setup_), signals_(context_, SIGINT, SIGTERM, SIGHUP), second_(context_) {}

    void run() {
        site_.start();
        context_.poll(); // the way to a daemon that is there is open before the first browser is heard
        listener_.start();
        await_signal();
        await_second();
        std::cout << "olt_console is ready on " << listener_.url() << std::endl;
        sd_notify(0, "READY=1");
        context_.run();
    }

private:
    void await_signal() {
        signals_.async_wait([this](boost::system::error_code failed, int number) {
            if (!failed && number == SIGHUP) {
                reload();
                await_signal();
            } else if (!failed) {
                stop();
            }
        });
    }

    void await_second() {
        second_.expires_after(std::chrono::seconds(1));
        second_.async_wait([this](boost::system::error_code cancelled) {
            if (!cancelled) {
                site_.tick();
                await_second();
            }
        });
    }

    void reload() {
        log_.reopen();
        try {
            listener_.reload_certificate();
        } catch (const std::exception& error) {
            std::cerr << "olt_console: " << error.what() << "; the certificate of before stays in use" << std::endl;
        }
    }

    void stop() {
        sd_notify(0, "STOPPING=1");
        listener_.stop();
        const bool has_logouts = site_.stop();
        second_.expires_after(has_logouts ? farewell_time : std::chrono::milliseconds(0));
        second_.async_wait([this](boost::system::error_code) { context_.stop(); });
    }

    asio::io_context context_{1};
    AccessLog log_;
    Site site_;
    ConnectionSetup setup_;
    Listener listener_;
    asio::signal_set signals_;
    asio::steady_timer second_;
};

} // namespace

int main(int count, char** arguments) {
    std::signal(SIGPIPE, SIG_IGN); // writing to a browser that is gone fails, and that is dealt with
    overwrite_freed_trees();
    int status = 0;
    const auto settings = read_settings(count, arguments, status);
    if (!settings) {
        return status;
    }
    take_all_descriptors();
    try {
        Console(*settings).run();
    } catch (const std::exception& error) {
        std::cerr << "olt_console: " << error.what() << std::endl;
        return 1;
    }
    return 0;
}
