#include "client/oltctl/confirmation/guard_lock.hpp"
#include "tests/support/eventually.hpp"
#include "tests/system/oltctl_user.hpp"

#include <csignal>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::test {
namespace {

using testing::HasSubstr;

class UnconfirmedCommit : public OltctlUser {
protected:
    /// Commits that host name; within the seconds somebody has to confirm it.
    void commit_hostname(const std::string& name, int seconds) {
        run("oltctl set configuration.CommonGCfg.hostname hostname=" + name);
        run("oltctl commit --confirm " + std::to_string(seconds));
        ASSERT_EQ(status_, 0);
        ASSERT_THAT(hostname(), HasSubstr(name));
    }
    std::string hostname() {
        return run("oltctl get configuration.CommonGCfg.hostname 2>/dev/null");
    }
    [[nodiscard]] std::optional<pid_t> guard() const {
        return oltctl::GuardLock(runtime_folder() / "oltctl-9999-unconfirmed.lock").holder();
    }
};

TEST_F(UnconfirmedCommit, ComesBackAloneAndLeavesWhatOthersEdit) {
    olt_.start({"--plant", "empty"});
    log_in("admin");
    commit_hostname("one", 2);
    run("oltctl set --patch configuration.CommonGCfg.system.ntp min_poll=5");
    EXPECT_THAT(run("oltctl commit 2>&1; oltctl logout 2>&1"), HasSubstr("`oltctl confirm` keeps it"));
    EXPECT_EQ(status_, 1);
    EXPECT_TRUE(eventually([&] { return !guard(); }));
    EXPECT_THAT(run("oltctl diff 2>&1"), testing::AllOf(HasSubstr("Nobody confirmed the last commit"),
                                                        HasSubstr("min_poll: 6 -> 5"), Not(HasSubstr("hostname"))));
    EXPECT_THAT(hostname(), HasSubstr("olt"));
}

TEST_F(UnconfirmedCommit, StaysWhenItIsConfirmedAlsoAfterTheGuardWasKilled) {
    olt_.start({"--plant", "empty"});
    log_in("admin");
    commit_hostname("one", 3600);
    EXPECT_EQ(run("oltctl confirm"), "");
    EXPECT_EQ(guard(), std::nullopt);
    EXPECT_THAT(hostname(), HasSubstr("one"));
    EXPECT_THAT(run("oltctl confirm 2>&1"), HasSubstr("No commit waits"));

    commit_hostname("two", 3600);
    const auto first = guard();
    ASSERT_TRUE(first);
    kill(*first, SIGKILL);
    ASSERT_TRUE(eventually([&] { return guard() && guard() != first; })) << "another guard takes its place";
    EXPECT_EQ(run("oltctl confirm --restore"), "");
    EXPECT_THAT(hostname(), HasSubstr("one"));
}

TEST_F(UnconfirmedCommit, ComesBackAfterARestartOfTheDaemonWithTheNextLogin) {
    olt_.start({"--plant", "empty"});
    log_in("admin");
    commit_hostname("one", 1);
    restart_daemon();
    EXPECT_TRUE(
        eventually([&] { return run("oltctl whoami 2>&1").find("could not be restored yet") != std::string::npos; }));
    EXPECT_TRUE(guard());
    log_in("admin");
    EXPECT_TRUE(eventually([&] { return !guard(); }));
    EXPECT_THAT(hostname(), HasSubstr("olt"));
}

} // namespace
} // namespace xpon::test
