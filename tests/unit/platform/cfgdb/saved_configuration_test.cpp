#include "cfgdb/checksum.hpp"
#include "cfgdb/durable_file.hpp"
#include "cfgdb/file_descriptor.hpp"
#include "cfgdb/saved_configuration.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <cerrno>
#include <fstream>
#include <optional>

#include <sys/stat.h>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::cfgdb {
namespace {

using testing::Contains;
using testing::HasSubstr;

constexpr const char* save_path = "/configuration/save-config";

class SavedConfiguration : public testing::Test {
protected:
    SavedConfiguration() {
        set_database_log(logger_);
        client_.emplace("TEST");
    }
    ~SavedConfiguration() override {
        set_database_log(nullptr);
    }

    void run_hostname(const std::string& name) {
        test::apply(*client_, {test::edit_hostname(name)});
        ASSERT_EQ(test::commit(*client_), "");
    }
    [[nodiscard]] std::string hostname() const {
        return test::hostname(*client_);
    }
    void save() const {
        ASSERT_EQ(save_running_configuration(client_->handle(), save_path), 0);
    }
    /// The texts of the files that were kept because they are not used as they are.
    [[nodiscard]] std::vector<std::string> originals() const {
        std::vector<std::string> texts;
        for (const auto& entry : std::filesystem::directory_iterator(root_.path() / "configuration")) {
            if (entry.path().filename().string().starts_with("save-config.original-")) {
                texts.push_back(read_file(entry.path()));
            }
        }
        return texts;
    }
    /// What is left of the OLT after the power was off.
    void lose_power() {
        client_.reset();
        logger_->clear();
        std::filesystem::remove_all(root_.path() / "run");
        client_.emplace("TEST");
    }

    std::shared_ptr<test::RecordingLogger> logger_ = std::make_shared<test::RecordingLogger>();
    test::TemporaryOltRoot root_;
    const std::string file_ = root_.path().string() + save_path;
    std::optional<CfgDbWrapper> client_;
};

TEST_F(SavedConfiguration, IsWhatWasSavedLast) {
    run_hostname("a");
    save();
    run_hostname("b");
    lose_power();
    EXPECT_EQ(hostname(), "a");
    run_hostname("c");
    test::apply(*client_, {test::edit_ont(1, 1, R"({"description":"d"})")});
    ASSERT_EQ(restart_from_saved_configuration(client_->handle()), 0);
    EXPECT_EQ(hostname(), "a");
    EXPECT_EQ(test::commit(*client_), test::nothing_to_commit);

    // Factory state is a candidate like others.
    ASSERT_EQ(set_candidate_to_factory(client_->handle()), 0);
    EXPECT_EQ(hostname(), "a");
    EXPECT_EQ(test::commit(*client_), "");
    EXPECT_EQ(hostname(), "olt");
    EXPECT_EQ(test::commit(*client_), test::nothing_to_commit);
}

/// `records` as a file has them.
std::string framed(const std::string& records) {
    const auto text = test::printed(serializer::Tree(cJSON_Parse(records.c_str())).get());
    return fmt::format(R"({{"format":"olt-config","version":1,"crc32":{},"records":{}}})", checksum(text), text);
}

TEST(Checksum, IsThatOfTheStandard) {
    EXPECT_EQ(checksum("123456789"), 0xCBF43926U);
    EXPECT_EQ(checksum(""), 0U);
}

TEST_F(SavedConfiguration, OneThatIsDamagedGivesWayToTheOneBefore) {
    run_hostname("a");
    save();
    run_hostname("b");
    save();
    const auto good = read_file(file_);
    auto flipped = good;
    flipped[flipped.find("\"b\"") + 1] = 'x';
    const std::pair<std::string, std::string> cases[] = {
        {good.substr(0, good.size() / 2), "no JSON"},
        {flipped, "checksum is wrong"},
        {"[]", "no saved configuration"},
        {R"({"format":"olt-config","version":2})", "version"},
    };
    for (const auto& [text, reason] : cases) {
        root_.write(save_path + 1, text);
        lose_power();
        EXPECT_EQ(hostname(), "a") << text;
        EXPECT_THAT(logger_->texts(), Contains(HasSubstr(reason)));
        EXPECT_THAT(logger_->texts(),
                    Contains(HasSubstr("Started with the saved configuration " + file_ + ".previous")));
        // The only good file does not give way to a damaged one, which nobody loses either.
        run_hostname("c");
        save();
        EXPECT_THAT(read_file(previous_file(file_)), HasSubstr(R"("hostname":"a")"));
        EXPECT_THAT(originals(), Contains(text));
    }
    EXPECT_THAT(originals(), testing::SizeIs(std::size(cases)));
    std::ofstream(file_) << "damaged";
    std::ofstream(previous_file(file_)) << "damaged";
    lose_power();
    EXPECT_EQ(hostname(), "olt");
    EXPECT_THAT(logger_->texts(), Contains(testing::StartsWith("Started with the factory configuration, because /")));
    // Between the two renames of a save there may be no main file, but there is always a good one.
    std::filesystem::remove(file_);
    std::ofstream(previous_file(file_)) << good;
    lose_power();
    EXPECT_EQ(hostname(), "b");
    EXPECT_TRUE(configuration_exists());
}

struct OtherRelease {
    const char* records;
    const char* hostname;
    const char* description; ///< of ONT 1/1; its ont_template is 1 when it is configured
    std::vector<const char*> lines;
};

constexpr const char* two_onts =
    R"("ZebGCfg_pon_ont":{"1":{"serial":[1,1,1,1,1,1,1,1,0,0],"description":"x","ont_template":1},
    "2":{"serial":[1,1,1,1,1,1,1,1,0,0]}},"ZebGCfg_pon_ont_ont_common_service":{"2.1":{"mode":"off"}})";
constexpr const char* lost_profile = R"("CommonGCfg_profiles_profiles_ont_ont_template":{
    "3":{"name":"a","services":[{"cross_connect":200}]}},
    "ZebGCfg_pon_ont":{"1":{"serial":[1,1,1,1,1,1,1,1,0,0],"ont_template":3},"2":{"description":"kept"}})";

const OtherRelease other_releases[] = {
    {R"("x":{},"ZebGCfg_pon_ont":[])", "c", "", {"Element x is unknown", "ZebGCfg_pon_ont is no object"}},
    {R"("ZebGCfg_pon_ont":{"4097":{},"1":{"description":"x"}})", "c", "x", {"has no record 4097"}},
    {R"("CommonGCfg_system_ntp":{"colour":1,"servers":[{"address":"a","colour":1},{"version":4}],"max_poll":18})",
     "c",
     "",
     {"CommonGCfg_system_ntp: colour: Unknown key is skipped", "servers.0.colour: Unknown key",
      "max_poll: Value 18 is out of range 4 to 17; it takes its default", "servers.1.address: Text is too short"}},
    {R"("CommonGCfg_system_ntp":{"enabled":true})", "c", "", {"the record takes its defaults"}},
    {R"("CommonGCfg_system_oob":{"enabled":false})", "c", "", {"left out: No management interface is enabled"}},
    {two_onts,
     "c",
     "x",
     {"ZebGCfg_pon_ont 2: left out: ONT serial is already used by ONT 1/1",
      "ont_common_service 2.1: left out: its ONT"}},
    {lost_profile,
     "c",
     "",
     {"ont_template 3: left out: Undefined cross-connect profile 200",
      "ZebGCfg_pon_ont 1: left out: CommonGCfg_profiles_profiles_ont_ont_template 3 is left out"}},
    {R"("CommonGCfg_profiles_profiles_ont_cross_connect":{"1":{}})", "c", "", {"cross_connect 1: left out: Undefined"}},
    {R"("CommonGCfg_profiles_profiles_ont_cross_connect":{"1":{"name":"a","s_vid":201}},)"
     R"("ZebGCfg_pon_ont":{"1":{"description":"x"}})",
     "c",
     "x",
     {"cross_connect 1: left out: it shares a VLAN with CommonGCfg_profiles_profiles_ont_cross_connect 3"}},
    {R"("ZebGCfg_pon_port_state":{"1":{"ont_limit":1}},"ZebGCfg_pon_ont":{"1":{"serial":[1,1,1,1,1,1,1,1,0,0],
        "description":"first"},"2":{"serial":[1,1,1,1,1,1,1,2,0,0]}})",
     "c",
     "first",
     {"ZebGCfg_pon_ont 2: left out: PON port has 2 ONTs, limit is 1"}},
};

// A file of another release is not damaged: what fits runs, each departure has a line, and the file is kept.
TEST_F(SavedConfiguration, OfAnotherReleaseRunsAsFarAsItFits) {
    for (const auto& [records, expected_hostname, description, lines] : other_releases) {
        const auto text = framed(fmt::format(R"({{"CommonGCfg_hostname":{{"hostname":"c"}},{}}})", records));
        root_.write(save_path + 1, text);
        root_.write("var/log/configuration.log", "");
        lose_power();
        EXPECT_EQ(hostname(), expected_hostname) << text;
        EXPECT_EQ(test::stored<PonOnt>(*client_, Store::running).description, std::string_view(description)) << text;
        for (const auto* line : lines) {
            EXPECT_THAT(logger_->texts(), Contains(HasSubstr(line)));
            EXPECT_THAT(root_.read("var/log/configuration.log"), HasSubstr(line));
        }
        EXPECT_THAT(originals(), Contains(text));
        // The process whose log is read may come later.
        client_.reset();
        logger_->clear();
        client_.emplace("TEST");
        EXPECT_THAT(logger_->texts(), Contains(HasSubstr(lines.front())));
        EXPECT_THAT(logger_->texts(), Contains(HasSubstr("Started with the saved configuration")));
        // What is saved now, a start takes as it is.
        save();
        lose_power();
        EXPECT_EQ(logger_->texts(), std::vector<std::string>{"Started with the saved configuration " + file_});
    }
}

TEST_F(SavedConfiguration, StaysAsItWasWhenASaveFails) {
    run_hostname("a");
    save();
    run_hostname("b");
    const auto other = file_ + ".previous";
    for (const auto& in_the_way : {file_ + ".new", file_ + ".old", other}) {
        std::filesystem::create_directory(in_the_way);
        EXPECT_EQ(save_running_configuration(client_->handle(), save_path), -1);
        EXPECT_EQ(errno, EISDIR);
        std::filesystem::remove(in_the_way);
    }
    EXPECT_EQ(save_running_configuration(client_->handle(), nullptr), -1);
    EXPECT_EQ(save_running_configuration(nullptr, save_path), -1);
    // A process that keeps the lock costs a moment, not for ever.
    {
        const FolderLock lock(root_.path() / "configuration");
        EXPECT_EQ(save_running_configuration(client_->handle(), save_path), -1);
        EXPECT_EQ(errno, ETIMEDOUT);
    }
    lose_power();
    EXPECT_EQ(hostname(), "a");
    EXPECT_EQ(std::filesystem::status(root_.path() / "configuration").permissions(), std::filesystem::perms::owner_all);
}

TEST_F(SavedConfiguration, IsNoPipe) {
    run_hostname("a");
    save();
    run_hostname("b");
    save();
    std::filesystem::remove(file_);
    ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
    EXPECT_EQ(save_running_configuration(client_->handle(), save_path), -1);
    EXPECT_EQ(errno, EINVAL);
    // What a killed save leaves goes at the next start.
    root_.write(std::string(save_path + 1) + ".new", "half");
    lose_power();
    EXPECT_EQ(hostname(), "a");
    EXPECT_FALSE(std::filesystem::exists(file_ + ".new"));
    EXPECT_THAT(logger_->texts(), Contains(HasSubstr("no regular file")));
}

} // namespace
} // namespace xpon::cfgdb
