#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <vector>

#include <sys/wait.h>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <unistd.h>

namespace xpon::cfgdb {
namespace {

/// A child process that runs `work` and ends with status 0 when it gives true.
template <class Work>
pid_t start_child(const Work& work) {
    const auto process = fork();
    if (process == 0) {
        _exit(work() && !testing::Test::HasFailure() ? 0 : 1);
    }
    return process;
}

class Processes : public testing::Test {
protected:
    Processes() {
        set_database_log(logger_);
    }
    ~Processes() override {
        set_database_log(nullptr);
    }

    std::shared_ptr<test::RecordingLogger> logger_ = std::make_shared<test::RecordingLogger>();
};

// Several processes start on an empty folder at once; every one finds the users and can write.
TEST_F(Processes, FillANewDatabaseOnceAndShareTheCandidate) {
    for (int round = 0; round < 20; ++round) {
        const test::TemporaryOltRoot root;
        std::vector<pid_t> children;
        for (unsigned number = 1; number <= 4; ++number) {
            children.push_back(start_child([number] {
                const CfgDbWrapper client("CHILD");
                test::apply(client, {test::edit_ont(1, number, fmt::format(R"({{"description":"{}"}})", number))});
                return client.find_user_by_username("viewer").has_value();
            }));
        }
        for (const auto child : children) {
            int status = -1;
            EXPECT_EQ(waitpid(child, &status, 0), child);
            EXPECT_EQ(status, 0);
        }
        const CfgDbWrapper client("PARENT");
        for (std::uint16_t index = 0; index < 4; ++index) {
            EXPECT_EQ(test::stored<PonOnt>(client, Store::candidate, {index}).description, std::to_string(index + 1));
        }
    }
}

} // namespace
} // namespace xpon::cfgdb
