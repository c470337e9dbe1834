#pragma once

#include "xpon/ipc/server.hpp"

namespace xpon::simulator {

/// A peer daemon as far as all of them are alike: it knows no operation (EOPNOTSUPP) and heeds no notice.
class Peer : public ipc::IPeerHandler {
public:
    ipc::ServerAnswer handle(const ipc::ServerRequest& request) override;
    void notice(const ipc::ServerRequest& request) override;
};

} // namespace xpon::simulator
