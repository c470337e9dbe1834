#include "gateway/http/listener.hpp"

#include <chrono>
#include <stdexcept>
#include <utility>

#include <boost/asio/ip/address.hpp>
#include <boost/asio/ssl/context.hpp>
#include <fmt/format.h>
#include <openssl/ssl.h>

namespace xpon::gateway {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

constexpr int backlog = 512;
constexpr auto pause_without_descriptors = std::chrono::milliseconds(100);

std::shared_ptr<asio::ssl::context> read_certificate(const Settings& settings) {
    if (settings.certificate.empty() != settings.key.empty()) {
        throw std::runtime_error("HTTPS needs both, certificate and key");
    }
    if (settings.certificate.empty()) {
        return nullptr;
    }
    auto tls = std::make_shared<asio::ssl::context>(asio::ssl::context::tls_server);
    SSL_CTX_set_min_proto_version(tls->native_handle(), TLS1_2_VERSION);
    SSL_CTX_set_options(tls->native_handle(), SSL_OP_NO_RENEGOTIATION | SSL_OP_CIPHER_SERVER_PREFERENCE);
    const auto check = [](const error_code& failed, const std::string& file) {
        if (failed) {
            throw std::runtime_error(fmt::format("Cannot use '{}': {}", file, failed.message()));
        }
    };
    error_code failed;
    tls->use_certificate_chain_file(settings.certificate, failed);
    check(failed, settings.certificate);
    tls->use_private_key_file(settings.key, asio::ssl::context::pem, failed);
    check(failed, settings.key);
    return tls;
}

tcp::endpoint endpoint_of(const Settings& settings) {
    error_code failed;
    const auto address = asio::ip::make_address(settings.listen, failed);
    if (failed) {
        throw std::runtime_error(fmt::format("listen: '{}' is no address", settings.listen));
    }
    if (settings.certificate.empty() && !address.is_loopback() && !settings.plain_http_everywhere) {
        throw std::runtime_error(
            fmt::format("Without certificate and key this listens on a loopback address only, not on "
                        "{}: passwords would cross the network readably. See plain-http-everywhere.",
                        settings.listen));
    }
    return {address, settings.port};
}

} // namespace

Listener::Listener(asio::io_context& context, const Settings& settings, const ConnectionSetup& setup)
    : settings_(settings), setup_(setup), tls_(read_certificate(settings)), acceptor_(context), pause_(context) {
    const auto endpoint = endpoint_of(settings);
    acceptor_.open(endpoint.protocol());
    acceptor_.set_option(tcp::acceptor::reuse_address(true));
    error_code failed;
    acceptor_.bind(endpoint, failed);
    if (failed) {
        throw std::runtime_error(
            fmt::format("Cannot listen on {} port {}: {}", settings.listen, settings.port, failed.message()));
    }
    acceptor_.listen(backlog);
}

void Listener::start() {
    accept();
}

void Listener::stop() {
    error_code ignored;
    acceptor_.close(ignored);
    pause_.cancel();
}

void Listener::reload_certificate() {
    tls_ = read_certificate(settings_);
}

std::string Listener::url() const {
    const auto endpoint = acceptor_.local_endpoint();
    const auto address = endpoint.address().to_string();
    const auto host = endpoint.address().is_v6() ? "[" + address + "]" : address;
    return fmt::format("{}://{}:{}", tls_ ? "https" : "http", host, endpoint.port());
}

void Listener::accept() {
    acceptor_.async_accept([this](error_code failed, tcp::socket socket) {
        if (failed == asio::error::operation_aborted || !acceptor_.is_open()) {
            return;
        }
        if (!failed) {
            serve(std::move(socket));
            accept();
            return;
        }
        pause_.expires_after(pause_without_descriptors);
        pause_.async_wait([this](error_code cancelled) {
            if (!cancelled) {
                accept();
            }
        });
    });
}

void Listener::serve(tcp::socket socket) {
    error_code gone;
    const auto address = socket.remote_endpoint(gone).address();
    const auto known = by_address_.find(address);
    const auto of_address = known == by_address_.end() ? 0 : known->second;
    if (gone || connections_ >= settings_.connections || 2 * of_address >= settings_.connections) {
        return; // closes it
    }
    ++connections_;
    ++by_address_[address];
    serve_connection(std::move(socket), setup_, tls_, [this, address] {
        --connections_;
        if (--by_address_[address] == 0) {
            by_address_.erase(address);
        }
    });
}

} // namespace xpon::gateway
