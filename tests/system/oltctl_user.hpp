#pragma once

#include "tests/system/olt.hpp"

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace xpon::test {

/// A user who works with oltctl on the machine of an OLT.
class OltctlUser : public testing::Test {
protected:
    void SetUp() override;

    [[nodiscard]] std::filesystem::path runtime_folder() const {
        return olt_.root() / "tmp/user";
    }

    /// What the shell command printed; its exit status is in `status_`. It runs in the runtime folder.
    std::string run(const std::string& command);
    /// The same of oltctl, in a session of that user.
    void log_in(const std::string& user);
    /// Stops the daemon and starts it again, which ends all sessions.
    void restart_daemon();

    Olt olt_;
    int status_ = 0;
};

} // namespace xpon::test
