#pragma once

#include "api_service/core_names.hpp"
#include "api_service/protocol/request.hpp"

#include <cstdint>
#include <functional>
#include <memory>

namespace xpon::api_service {

struct Session;

/// Turns the (PON port, ONT) index pairs of a request into the one flat ONT index of the configuration database:
/// (port - 1) * 256 + ont, counted from 1. With three indices the third, the service, stays behind it.
class OntIndicesPreHook {
public:
    /// `pon_port_count` gives the number of PON ports, or 0 when the board cannot be read.
    OntIndicesPreHook(const std::shared_ptr<ILogger>& logger, std::function<std::uint8_t()> pon_port_count);

    /// An error leaves the request as it was.
    Result<void> operator()(const std::shared_ptr<Session>& session, Request& request) const;

private:
    [[nodiscard]] Result<std::vector<std::string>> flat_indices(const std::vector<std::string>& indices) const;

    std::shared_ptr<ILogger> logger_;
    std::function<std::uint8_t()> pon_port_count_;
};

} // namespace xpon::api_service
