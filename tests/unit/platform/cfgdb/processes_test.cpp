#include "cfgdb/environment.hpp"
#include "cfgdb/keys.hpp"
#include "cfgdb/transaction.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/unit/platform/cfgdb/child.hpp"
#include "tests/unit/platform/cfgdb/temporary_root.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/cfgdb/database_log.hpp"
#include "xpon/cfgdb/element_functions.hpp"

#include <cstring>
#include <string>
#include <vector>

#include <sys/wait.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace xpon::cfgdb {
namespace {

using test::Child;

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
    const auto store_foreign_record = [&](bool has_other_mark) {
        const Environment environment(root.path() / "run/cfgdb");
        WriteTransaction transaction(environment);
        const std::vector<std::byte> foreign(72, std::byte{0x41});
        transaction.put(record_key(Store::running, {ElementId::CommonGCfg_hostname, {}}), foreign);
        if (has_other_mark) {
            transaction.put(Key(Store::meta).add("filled"), foreign);
        }
        transaction.commit();
    };
    // Another version may run beside this one, or may have run before it.
    for (const bool has_other_mark : {false, true}) {
        {
            CfgDbWrapper client("TEST");
            PonOnt ont{};
            ont.serial = 77;
            const unsigned short index = 5;
            ASSERT_EQ(setDb_ZebGCfg_pon_ont(client.handle(), 0, &ont, &index), 0);
            EXPECT_EQ(client.commit(nullptr).has_value(), !has_other_mark);
        }
        store_foreign_record(has_other_mark);
        set_database_log(logger);
        CfgDbWrapper client("TEST");
        auto record = make_hostname("");
        ASSERT_EQ(getRunDb_CommonGCfg_hostname(client.handle(), &record, nullptr), 0);
        EXPECT_STREQ(record.hostname, "olt");
        PonOnt ont{};
        ont.serial = 77;
        const unsigned short other_index = 4;
        ASSERT_EQ(setDb_ZebGCfg_pon_ont(client.handle(), 0, &ont, &other_index), 0);
        // The index of serials knows the ONT that was there before.
        EXPECT_FALSE(client.commit(nullptr).has_value());
        ASSERT_TRUE(client.rollback().has_value());
        set_database_log(nullptr);
    }
    EXPECT_THAT(logger->texts(),
                testing::ElementsAre(testing::HasSubstr("Records of CommonGCfg_hostname were stored by another")));
}

} // namespace
} // namespace xpon::cfgdb
