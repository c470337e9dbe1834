#include "cfgdb/environment.hpp"
#include "cfgdb/keys.hpp"
#include "cfgdb/transaction.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/unit/platform/cfgdb/temporary_root.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/cfgdb/database_log.hpp"
#include "xpon/cfgdb/element_functions.hpp"

#include <csignal>
#include <cstring>
#include <string>
#include <vector>

#include <sys/wait.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace xpon::cfgdb {
namespace {

/// A child process that runs `work`, which says with `report` how far it is; killed with the object.
class Child {
public:
    template <class Work>
    explicit Child(const Work& work) {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        reading_end_ = ends[0];
        process_ = fork();
        if (process_ == 0) {
            work([end = ends[1]] { EXPECT_EQ(write(end, "x", 1), 1); });
            _exit(0);
        }
        close(ends[1]);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        kill(process_, SIGKILL);
        wait_for_end();
        close(reading_end_);
    }

    void wait_for_report() const {
        char byte = 0;
        EXPECT_EQ(read(reading_end_, &byte, 1), 1);
    }
    void wait_for_end() const {
        waitpid(process_, nullptr, 0);
    }
    void kill_hard() const {
        kill(process_, SIGKILL);
        wait_for_end();
    }

private:
    int reading_end_ = -1;
    pid_t process_ = -1;
};

GSystemHostname make_hostname(const std::string& name) {
    GSystemHostname record{};
    std::memcpy(record.hostname, name.c_str(), name.size());
    return record;
}

TEST(Processes, ShareTheCandidate) {
    const test::TemporaryRoot root;
    const Child child([](const auto& report) {
        const CfgDbWrapper client("CHILD");
        const auto record = make_hostname("from-child");
        setDb_CommonGCfg_hostname(client.handle(), 0, &record, nullptr);
        report();
    });
    child.wait_for_report();
    child.wait_for_end();
    CfgDbWrapper client("PARENT");
    GSystemHostname seen{};
    ASSERT_EQ(getDb_CommonGCfg_hostname(client.handle(), 0, &seen, nullptr), 0);
    EXPECT_STREQ(seen.hostname, "from-child");
    EXPECT_TRUE(client.commit(nullptr).has_value());
}

// Several processes start on an empty folder at once; every one finds the users and can write.
TEST(Processes, FillANewDatabaseOnce) {
    for (int round = 0; round < 20; ++round) {
        const test::TemporaryRoot root;
        std::vector<std::unique_ptr<Child>> children;
        for (unsigned short i = 0; i < 4; ++i) {
            children.push_back(std::make_unique<Child>([i](const auto& report) {
                const CfgDbWrapper client("CHILD");
                PonOnt record{};
                record.serial = 1U + i;
                if (client.find_user_by_username("viewer").has_value() &&
                    setDb_ZebGCfg_pon_ont(client.handle(), 0, &record, &i) == 0) {
                    report();
                }
            }));
        }
        for (const auto& child : children) {
            child->wait_for_report();
            child->wait_for_end();
        }
        const CfgDbWrapper client("PARENT");
        for (unsigned short i = 0; i < children.size(); ++i) {
            PonOnt record{};
            ASSERT_EQ(getDb_ZebGCfg_pon_ont(client.handle(), 0, &record, &i), 0);
            EXPECT_EQ(record.serial, 1U + i);
        }
    }
}

// A commit of a killed process has happened or has not: both records run the same number.
TEST(Processes, LeaveAConsistentDatabaseWhenKilled) {
    const test::TemporaryRoot root;
    for (unsigned round = 1; round <= 30; ++round) {
        const Child child([](const auto& report) {
            CfgDbWrapper client("CHILD");
            for (std::uint16_t number = 1;; ++number) {
                PonOnt record{};
                for (unsigned short index = 0; index < 64; ++index) {
                    record.serial = std::uint64_t{number} << 32U | index;
                    setDb_ZebGCfg_pon_ont(client.handle(), 0, &record, &index);
                }
                if (client.commit(nullptr).has_value() && number == 3) {
                    report();
                }
            }
        });
        child.wait_for_report();
        child.kill_hard();

        CfgDbWrapper client("PARENT");
        PonOnt first{};
        for (unsigned short index = 0; index < 64; ++index) {
            PonOnt record{};
            ASSERT_EQ(getRunDb_ZebGCfg_pon_ont(client.handle(), &record, &index), 0);
            first = index == 0 ? record : first;
            ASSERT_EQ(record.serial >> 32U, first.serial >> 32U) << "round " << round;
            ASSERT_EQ(record.serial & 0xFFFFU, index);
        }
        ASSERT_TRUE(client.rollback().has_value());
        const auto name = make_hostname("olt-" + std::to_string(round));
        ASSERT_EQ(setDb_CommonGCfg_hostname(client.handle(), 0, &name, nullptr), 0);
        ASSERT_TRUE(client.commit(nullptr).has_value());
    }
}

TEST(Processes, ReadRecordsOfAnotherVersionAsFactoryState) {
    const test::TemporaryRoot root;
    const auto logger = std::make_shared<test::RecordingLogger>();
    set_database_log(logger);
    {
        const CfgDbWrapper client("TEST"); // makes the database
    }
    {
        const Environment environment(root.path() / "run/cfgdb");
        WriteTransaction transaction(environment);
        const std::vector<std::byte> foreign(72, std::byte{0x41});
        transaction.put(record_key(Store::running, {ElementId::CommonGCfg_hostname, {}}), foreign);
        transaction.commit();
    }
    CfgDbWrapper client("TEST");
    auto record = make_hostname("");
    ASSERT_EQ(getRunDb_CommonGCfg_hostname(client.handle(), &record, nullptr), 0);
    EXPECT_STREQ(record.hostname, "olt");
    EXPECT_THAT(logger->texts(),
                testing::ElementsAre(testing::HasSubstr("Records of CommonGCfg_hostname were stored by another")));
    record = make_hostname("new");
    ASSERT_EQ(setDb_CommonGCfg_hostname(client.handle(), 0, &record, nullptr), 0);
    EXPECT_TRUE(client.commit(nullptr).has_value());
    ASSERT_EQ(getRunDb_CommonGCfg_hostname(client.handle(), &record, nullptr), 0);
    EXPECT_STREQ(record.hostname, "new");
    set_database_log(nullptr);
}

} // namespace
} // namespace xpon::cfgdb
