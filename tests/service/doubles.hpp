#pragma once

#include "api_service/auth/pam_interfaces.hpp"
#include "xpon/ipc/ipc.hpp"

#include <functional>
#include <memory>
#include <set>
#include <string>

namespace xpon::test {

/// Takes a user's name as password, and counts.
class FakePam : public api_service::IPamApi {
public:
    core::Result<std::shared_ptr<api_service::IPamSession>> open_session(const std::string& user,
                                                                         const std::string& password) override;

    int sessions_opened = 0;
    int sessions_open = 0;
    std::string unavailable_for;                                ///< opening a session for this user throws
    std::function<void(const std::string& user)> while_opening; ///< runs in the service's thread
};

/// An endpoint that has been connected to all peers. What they answer is for the custom layer's double to say.
class FakePeers : public ipc::IIpc {
public:
    core::Result<void> connect(ipc::Address peer) override;
    [[nodiscard]] Ipc* raw() const override {
        return nullptr;
    }

    std::set<ipc::Address> absent; ///< gone since they were connected
};

} // namespace xpon::test
