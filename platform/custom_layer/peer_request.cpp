#include "custom_layer/peer_request.hpp"

#include <utility>

namespace xpon::custom_layer {

std::vector<std::byte> fetch(Ipc* ipc, peer_side::Operation operation, const Question& question) {
    const auto owner = peer_side::owner_of(operation);
    if (ipc == nullptr || !owner || !question) {
        core::fail_with(EINVAL);
    }
    auto reply = ipc->request(*owner, static_cast<std::uint16_t>(operation), *question, Ipc::default_deadline);
    if (reply.status != 0) {
        // A peer of another mind about errno values must not look like success or like a caller's mistake.
        static constexpr int largest_errno = 4095;
        core::fail_with(reply.status > 0 && reply.status <= largest_errno ? reply.status : EIO);
    }
    return std::move(reply.payload);
}

int order(Ipc* ipc, peer_side::Operation operation, const Question& question) {
    return core::c_function([&] {
        if (!fetch(ipc, operation, question).empty()) {
            core::fail_with(EIO);
        }
    });
}

} // namespace xpon::custom_layer
