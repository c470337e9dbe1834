#pragma once

#include "gateway/http/connection.hpp"
#include "gateway/settings.hpp"

#include <cstddef>
#include <map>
#include <memory>
#include <string>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

namespace xpon::gateway {

/// Takes browsers' connections, as many at once as the settings allow, and half of that from one address.
class Listener {
public:
    /// Throws std::runtime_error or boost::system::system_error with the reason why it cannot listen: the address is
    /// taken, is no address, the certificate is unreadable, or plain HTTP would leave this machine.
    Listener(boost::asio::io_context& context, const Settings& settings, const ConnectionSetup& setup);

    void start();
    void stop();
    /// Reads certificate and key anew, for the connections to come. Throws like the constructor, and changes nothing
    /// then.
    void reload_certificate();
    /// Such as "http://127.0.0.1:8080".
    [[nodiscard]] std::string url() const;

private:
    void accept();
    void serve(boost::asio::ip::tcp::socket socket);

    const Settings& settings_;
    const ConnectionSetup& setup_;
    std::shared_ptr<boost::asio::ssl::context> tls_;
    boost::asio::ip::tcp::acceptor acceptor_;
    boost::asio::steady_timer pause_;
    std::size_t connections_ = 0;
    std::map<boost::asio::ip::address, std::size_t> by_address_;
};

} // namespace xpon::gateway
