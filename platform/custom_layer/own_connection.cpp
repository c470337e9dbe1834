#include "custom_layer/own_connection.hpp"

#include "ipc/zmq_ipc.hpp"
#include "xpon/core/c_function.hpp"
#include "xpon/logger/logger.hpp"

#include <cerrno>
#include <string>
#include <utility>

namespace xpon::custom_layer {
namespace {

/// Beside the address of the service that the layer is part of: peers tell the two apart.
constexpr ipc::Address own_address{0x1bfffe};

struct Kept {
    std::shared_ptr<core::ILogger> logger;
    std::shared_ptr<ipc::IIpc> endpoint;
};

Kept& kept() {
    static Kept connection;
    return connection;
}

} // namespace

Ipc* own_connection() {
    auto& [logger, endpoint] = kept();
    if (!endpoint) {
        if (!logger) {
            // Nobody said where to log to: a category without a rule.
            logger = std::make_shared<logger::Logger>(std::string("custom-layer"));
        }
        const auto made = ipc::make_zmq_ipc(own_address, logger, {}, ipc::Connecting::on_request);
        if (!made) {
            core::fail_with(EIO);
        }
        endpoint = made.value();
    }
    return endpoint->raw();
}

void renew_own_connection(std::shared_ptr<core::ILogger> logger) {
    kept() = {std::move(logger), nullptr};
}

} // namespace xpon::custom_layer
