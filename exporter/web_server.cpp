#include "exporter/web_server.hpp"

#include <functional>
#include <string_view>
#include <utility>

#include <CivetServer.h>
#include <fmt/format.h>

namespace xpon::exporter {
namespace {

// As many scrapes wait side by side for one collection; further ones wait for these.
constexpr auto threads = "4";
constexpr auto patience_ms = "10000"; // with a client that does not read, or does not ask
constexpr auto plain = "text/plain; charset=utf-8";
constexpr auto exposition = "text/plain; version=0.0.4; charset=utf-8";
constexpr auto page =
    "<!doctype html><title>OLT exporter</title><h1>OLT exporter</h1><a href=\"/metrics\">Metrics</a>\n";

void send(mg_connection* connection, std::string_view status, std::string_view type, std::string_view body) {
    const auto head = fmt::format("HTTP/1.1 {}\r\nContent-Type: {}\r\nContent-Length: {}\r\nConnection: close\r\n\r\n",
                                  status, type, body.size());
    if (mg_write(connection, head.data(), head.size()) > 0) {
        mg_write(connection, body.data(), body.size());
    }
}

class Page : public CivetHandler {
public:
    using Answer = std::function<void(mg_connection*)>;
    explicit Page(Answer answer) : answer_(std::move(answer)) {}

    bool handleGet(CivetServer* /*server*/, mg_connection* connection) override {
        answer_(connection);
        return true;
    }

private:
    Answer answer_;
};

} // namespace

WebServer::WebServer(const std::string& address, Scrapes& scrapes, std::chrono::milliseconds longest)
    : server_(std::make_unique<CivetServer>(std::vector<std::string>{"listening_ports", address, "num_threads", threads,
                                                                     "enable_keep_alive", "no", "request_timeout_ms",
                                                                     patience_ms})) {
    const auto add = [&](const char* path, Page::Answer answer) {
        handlers_.push_back(std::make_unique<Page>(std::move(answer)));
        server_->addHandler(path, *handlers_.back());
    };
    // The path with "$" is itself alone, not what begins with it.
    add("/metrics$", [&scrapes](mg_connection* connection) {
        const auto text = scrapes.text();
        send(connection, text ? "200 OK" : "503 Service Unavailable", text ? exposition : plain,
             text ? std::string_view(*text) : "No collection could be made.\n");
    });
    add("/-/healthy$", [&scrapes, longest](mg_connection* connection) {
        const bool is_stuck = scrapes.is_stuck(longest);
        send(connection, is_stuck ? "503 Service Unavailable" : "200 OK", plain,
             is_stuck ? "A collection does not end.\n" : "Healthy.\n");
    });
    add("/$", [](mg_connection* connection) { send(connection, "200 OK", "text/html; charset=utf-8", page); });
}

WebServer::~WebServer() {
    server_->close(); // ends the threads, before their handlers go
}

int WebServer::port() const {
    return server_->getListeningPorts().front();
}

} // namespace xpon::exporter
