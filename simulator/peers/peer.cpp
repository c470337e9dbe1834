#include "simulator/peers/peer.hpp"

#include <cerrno>

namespace xpon::simulator {

ipc::ServerAnswer Peer::handle(const ipc::ServerRequest&) {
    return {EOPNOTSUPP, {}};
}

void Peer::notice(const ipc::ServerRequest&) {}

} // namespace xpon::simulator
