#include "custom_layer/peer_request.hpp"

#include "xpon/peer_side/operations.hpp"

#include <utility>

namespace xpon::custom_layer {

int fail(int cause) {
    errno = cause;
    return -1;
}

bool ask(Ipc* ipc, ipc::Operation operation, std::span<const std::byte> question, std::vector<std::byte>& payload) {
    const auto owner = ipc::owner_of(operation);
    if (ipc == nullptr || !owner) {
        fail(EINVAL);
        return false;
    }
    auto reply = ipc->request(*owner, operation, question, Ipc::default_deadline);
    if (reply.status != 0) {
        // A peer of another mind about errno values must not look like success or like a caller's mistake.
        static constexpr int largest_errno = 4095;
        fail(reply.status > 0 && reply.status <= largest_errno ? reply.status : EIO);
        return false;
    }
    payload = std::move(reply.payload);
    return true;
}

int order(Ipc* ipc, ipc::Operation operation, std::span<const std::byte> question) {
    std::vector<std::byte> nothing;
    if (!ask(ipc, operation, question, nothing)) {
        return -1;
    }
    return nothing.empty() ? 0 : fail(EIO);
}

} // namespace xpon::custom_layer
