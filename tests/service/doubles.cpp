#include "tests/service/doubles.hpp"

#include <stdexcept>

namespace xpon::test {
namespace {

class FakePamSession : public api_service::IPamSession {
public:
    explicit FakePamSession(int& open) : open_(open) {
        ++open_;
    }
    ~FakePamSession() override {
        --open_;
    }
    [[nodiscard]] std::chrono::steady_clock::time_point get_timestamp() const override {
        return {};
    }
    void set_timestamp(const std::chrono::steady_clock::time_point&) override {}

private:
    int& open_;
};

} // namespace

core::Result<void> FakePeers::connect(ipc::Address peer) {
    return absent.contains(peer) ? core::ErrorPayload(core::Error::CommonError, "Nobody is there")
                                 : core::ErrorPayload(core::Error::Already, "Connected");
}

core::Result<std::shared_ptr<api_service::IPamSession>> FakePam::open_session(const std::string& user,
                                                                              const std::string& password) {
    if (while_opening) {
        while_opening(user);
    }
    if (user == unavailable_for) {
        throw std::runtime_error("PAM is away");
    }
    if (password != user) {
        return core::ErrorPayload(core::Error::NoAccess, "Invalid credentials");
    }
    ++sessions_opened;
    return std::make_shared<FakePamSession>(sessions_open);
}

} // namespace xpon::test
