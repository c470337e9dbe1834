#include "cfgdb/durable_file.hpp"
#include "tests/support/eventually.hpp"
#include "tests/support/process.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"
#include "tests/unit/platform/cfgdb/other_release.hpp"
#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <list>
#include <optional>
#include <random>
#include <vector>

#include <sys/resource.h>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <poll.h>

namespace xpon::cfgdb {
namespace {

/// Another process that has what `role` says; killed with the object.
class Holder {
public:
    explicit Holder(const std::string& role) : process_({OTHER_PROCESS, role}, {}) {
        EXPECT_TRUE(process_.wait_for_line("ready")) << process_.output();
    }

private:
    test::Process process_;
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
        std::list<test::Process> others;
        for (const auto* ont : {"1", "2", "3", "4"}) {
            others.emplace_back(std::vector<std::string>{OTHER_PROCESS, "describe-ont", ont}, test::Environment{});
        }
        for (auto& other : others) {
            EXPECT_EQ(other.wait(), 0) << other.output();
        }
        const CfgDbWrapper client("PARENT");
        for (std::uint16_t index = 0; index < 4; ++index) {
            EXPECT_EQ(test::stored<PonOnt>(client, Store::candidate, {index}).description, std::to_string(index + 1));
        }
    }
}

// A process that is stopped keeps its locks. Others do without what it locked, and read on.
TEST_F(Processes, DoNotWaitForAStoppedOne) {
    const test::TemporaryOltRoot root;
    std::optional<CfgDbWrapper> opened;
    {
        const Holder owner("hold-writing");
        auto& client = opened.emplace("TEST");
        const auto begin = std::chrono::steady_clock::now();
        const auto refused = client.commit(nullptr);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
        ASSERT_TRUE(refused.has_error());
        EXPECT_EQ(refused.error().code, core::Error::CommonError);
        EXPECT_EQ(refused.error().info->message, "configuration: Another process keeps the database locked");
        const GSystemHostname record{"olt-8"};
        EXPECT_EQ(setDb_CommonGCfg_hostname(client.handle(), client.context(), &record, nullptr), -1);
        EXPECT_EQ(errno, ETIMEDOUT);
        EXPECT_EQ(test::hostname(client, Store::candidate), "olt-7");
    }
    EXPECT_EQ(test::commit(*opened), "");
}

// What a dead reader saw is not kept for it.
TEST_F(Processes, DoNotKeepPagesForADeadReader) {
    const test::TemporaryOltRoot root;
    std::optional<CfgDbWrapper> client;
    {
        const Holder reader("hold-reading");
        client.emplace("TEST");
    }
    for (int round = 0; round < 3000; ++round) {
        test::apply(*client, {test::edit_hostname(fmt::format("olt-{}", round))});
    }
    EXPECT_LT(std::filesystem::file_size(root.path() / "run/cfgdb/data.mdb"), std::uintmax_t{10} << 20U);
}

// A process that finds the files damaged makes them anew; who has the old ones open must not live on in the past.
TEST_F(Processes, FollowFilesThatAreMadeAnew) {
    const test::TemporaryOltRoot root;
    const auto file = root.path() / "run/cfgdb/data.mdb";
    CfgDbWrapper client("TEST");
    const auto run = [&](const char* name) {
        test::apply(client, {test::edit_hostname(name)});
        EXPECT_EQ(test::commit(client), "");
    };
    run("olt-1");
    std::filesystem::copy_file(file, file.string() + ".other");
    run("olt-2");
    std::filesystem::remove(root.path() / "run/cfgdb/lock.mdb");
    std::filesystem::rename(file.string() + ".other", file);
    EXPECT_TRUE(test::eventually([&] { return test::hostname(client) == "olt-1"; }));
    run("olt-3");
    EXPECT_EQ(test::hostname(client), "olt-3");
}

// Wherever it is killed, the next start finds every record, those of the candidate too.
TEST_F(Processes, MayBeKilledWhileADatabaseIsCarriedOver) {
    constexpr std::uint16_t onts = 512;
    const test::TemporaryOltRoot root;
    const auto folder = root.path() / "run/cfgdb";
    {
        CfgDbWrapper client("TEST");
        std::vector<test::Edit> edits;
        for (unsigned nth = 0; nth < onts; ++nth) {
            edits.push_back(test::edit_ont(nth / 256 + 1, nth % 256 + 1, R"({"description":"runs"})"));
        }
        test::apply(client, edits);
        ASSERT_EQ(test::commit(client), "");
        test::apply(client, {test::edit_ont(1, 1, R"({"description":"pending"})")});
        test::OtherRelease(test::add_colour).take_over(test::database_of(client), [](cJSON& record) {
            cJSON_AddTrueToObject(&record, "colour");
        });
    }
    const auto before = read_file(folder / "data.mdb");
    std::mt19937 random(1);
    for (int round = 0; round < 20; ++round) {
        std::error_code fault; // a killed program's child may make a last file meanwhile
        ASSERT_TRUE(test::eventually([&] { return std::filesystem::remove_all(folder, fault), !fault; }));
        root.write("run/cfgdb/data.mdb", before);
        {
            const Holder start("open-database");
            const timespec moment{.tv_sec = 0, .tv_nsec = static_cast<long>(random() % 60'000'000)};
            ppoll(nullptr, 0, &moment, nullptr); // any moment will do
        }
        const CfgDbWrapper client("TEST");
        for (std::uint16_t index = 0; index < onts; ++index) {
            ASSERT_STREQ(test::stored<PonOnt>(client, Store::running, {index}).description, "runs") << index;
        }
        ASSERT_STREQ(test::stored<PonOnt>(client, Store::candidate).description, "pending");
    }
}

TEST_F(Processes, NameOneCauseOfAFaultAtACommit) {
    const test::TemporaryOltRoot root;
    CfgDbWrapper client("TEST");
    test::apply(client, {test::edit_hostname("olt-7")});
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit nothing{0, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &nothing);
    const auto failed = client.commit(nullptr);
    setrlimit(RLIMIT_FSIZE, &before);
    ASSERT_TRUE(failed.has_error());
    EXPECT_EQ(failed.error().info->message, "configuration: File too large");
    EXPECT_EQ(test::commit(client), "");
}

} // namespace
} // namespace xpon::cfgdb
