#pragma once

#include "exporter/scrapes.hpp"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

class CivetHandler;
class CivetServer;

namespace xpon::exporter {

/// Answers `/metrics`, `/-/healthy` and `/` over HTTP, in threads of its own, until it is destroyed.
class WebServer {
public:
    /// `address`: a port, or an address of this machine and a port ("127.0.0.1:9888"). `longest`: how long a collection
    /// may take before the exporter counts as unhealthy. Throws CivetException when it cannot listen there.
    WebServer(const std::string& address, Scrapes& scrapes, std::chrono::milliseconds longest);
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;
    ~WebServer();

    [[nodiscard]] int port() const;

private:
    std::vector<std::unique_ptr<CivetHandler>> handlers_; // outlive the server
    std::unique_ptr<CivetServer> server_;
};

} // namespace xpon::exporter
