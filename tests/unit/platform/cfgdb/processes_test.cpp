#include "cfgdb/environment.hpp"
#include "cfgdb/keys.hpp"
#include "cfgdb/transaction.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <csignal>
#include <filesystem>

#include <sys/wait.h>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <unistd.h>

namespace xpon::cfgdb {
namespace {

/// A child process that runs `work`, which says with `report` how far it is; killed with the object.
class Child {
public:
    template <class Work>
    explicit Child(const Work& work) {
        EXPECT_EQ(pipe(ends_), 0);
        process_ = fork();
        if (process_ == 0) {
            work([this] { EXPECT_EQ(write(ends_[1], "x", 1), 1); });
            _exit(0);
        }
        close(ends_[1]);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        close(ends_[0]);
    }

    void wait_for_report() const {
        char byte = 0;
        EXPECT_EQ(read(ends_[0], &byte, 1), 1);
    }

private:
    int ends_[2]{};
    pid_t process_ = -1;
};

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
        std::vector<std::unique_ptr<Child>> children;
        for (unsigned number = 1; number <= 4; ++number) {
            children.push_back(std::make_unique<Child>([number](const auto& report) {
                const CfgDbWrapper client("CHILD");
                test::apply(client, {test::edit_ont(1, number, fmt::format(R"({{"description":"{}"}})", number))});
                if (client.find_user_by_username("viewer").has_value()) {
                    report();
                }
            }));
        }
        for (const auto& child : children) {
            child->wait_for_report();
        }
        const CfgDbWrapper client("PARENT");
        for (std::uint16_t index = 0; index < 4; ++index) {
            EXPECT_EQ(test::stored<PonOnt>(client, Store::candidate, {index}).description, std::to_string(index + 1));
        }
    }
}

/// Whether the 64 ONTs are of one commit.
void expect_one_commit(const CfgDbWrapper& client) {
    const std::string first = test::stored<PonOnt>(client, Store::running).description;
    EXPECT_NE(first, "");
    for (std::uint16_t index = 1; index < 64; ++index) {
        ASSERT_EQ(test::stored<PonOnt>(client, Store::running, {index}).description, first) << index;
    }
}

// A commit of a killed process has happened or has not, and the saved file is a whole one.
TEST_F(Processes, LeaveAConsistentDatabaseAndFileWhenKilled) {
    const test::TemporaryOltRoot root;
    for (unsigned round = 1; round <= 40; ++round) {
        auto child = std::make_unique<Child>([round](const auto& report) {
            CfgDbWrapper client("CHILD");
            for (unsigned number = 1;; ++number) {
                for (unsigned ont = 1; ont <= 64; ++ont) {
                    const auto description = fmt::format(R"({{"description":"{}/{}"}})", round, number);
                    test::apply(client, {test::edit_ont(1, ont, description)});
                }
                // The kill comes in a commit or in a save.
                if (number == 3 && round % 2 == 0) {
                    report();
                }
                test::commit(client);
                if (number == 3 && round % 2 == 1) {
                    report();
                }
                save_running_configuration(client.handle(), "/configuration/save-config");
            }
        });
        child->wait_for_report();
        child.reset();
        {
            CfgDbWrapper client("PARENT");
            expect_one_commit(client);
            ASSERT_TRUE(client.rollback().has_value());
            test::apply(client, {test::edit_hostname(fmt::format("olt-{}", round))});
            ASSERT_EQ(test::commit(client), "");
        }
        std::filesystem::remove_all(root.path() / "run");
        logger_->clear();
        expect_one_commit(CfgDbWrapper("AFTER POWER CUT"));
        EXPECT_THAT(logger_->texts(), testing::ElementsAre(testing::EndsWith("/configuration/save-config")))
            << "damaged in round " << round;
    }
}

// Another version may run beside this one, or may have run before it.
TEST_F(Processes, ReadRecordsOfAnotherVersionAsFactoryState) {
    const test::TemporaryOltRoot root;
    for (const bool has_other_mark : {false, true}) {
        const auto ont = R"({"serial":[1,1,1,1,1,1,1,1,0,0]})";
        {
            CfgDbWrapper client("TEST");
            test::apply(client, {test::edit_ont(1, 5, ont)});
            EXPECT_EQ(test::commit(client), has_other_mark ? test::nothing_to_commit : "");
            WriteTransaction transaction(test::database_of(client).environment());
            const std::vector<std::byte> foreign(72, std::byte{0x41});
            transaction.put(record_key(Store::running, {element_of<GSystemHostname>, {}}), foreign);
            if (has_other_mark) {
                transaction.put(Key(Store::meta).add("filled"), foreign);
            }
            transaction.commit();
        }
        CfgDbWrapper client("TEST");
        EXPECT_EQ(test::hostname(client), "olt");
        // The index of serials knows the ONT that was there before.
        test::apply(client, {test::edit_ont(1, 4, ont)});
        EXPECT_THAT(test::commit(client), testing::HasSubstr("already used"));
        ASSERT_TRUE(client.rollback().has_value());
    }
    EXPECT_THAT(logger_->texts(),
                testing::Contains(testing::HasSubstr("Records of CommonGCfg_hostname were stored by another")));
}

} // namespace
} // namespace xpon::cfgdb
