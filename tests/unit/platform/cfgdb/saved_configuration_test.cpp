#include "cfgdb/durable_file.hpp"
#include "cfgdb/saved_configuration.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <cerrno>
#include <fstream>
#include <optional>

#include <boost/crc.hpp>
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

TEST_F(SavedConfiguration, RunsAfterAPowerCut) {
    const std::vector<test::Edit> edits{
        test::edit_hostname("olt-7"),
        test::edit<FrontPort>(R"({"description":"\u00fcplink \"1\"","tagged_vlans":"100-102"})", 3),
        test::edit<OntTemplate>("{}", 1), // the factory has one
        test::edit_ont(16, 256, R"({"serial":[1,2,3,4,5,6,7,255,0,0],"ont_template":2})"),
        test::edit_service(16, 256, 8, R"({"mode":"off","static_ip":"192.0.2.1"})")};
    test::apply(*client_, edits);
    ASSERT_EQ(test::commit(*client_), "");
    save();
    EXPECT_THAT(read_file(file_),
                testing::AllOf(testing::StartsWith(R"({"format":"olt-config","version":1,"crc32":)"),
                               HasSubstr(R"("ZebGCfg_pon_ont":{"4096":{"serial":[1,2,3)"),
                               HasSubstr(R"("ZebGCfg_pon_ont_ont_common_service":{"4096.8":{"mode":"off")")));
    lose_power();
    // Each of the edits runs, so setting it again is no change.
    test::apply(*client_, edits);
    EXPECT_EQ(test::commit(*client_), test::nothing_to_commit);
    EXPECT_THAT(logger_->texts(), Contains(HasSubstr("Started with the saved configuration")));
    // The indexes know the ONT.
    test::apply(*client_, {test::edit_ont(1, 1, R"({"serial":[1,2,3,4,5,6,7,255,0,0]})")});
    EXPECT_THAT(test::commit(*client_), HasSubstr("ONT serial is already used by ONT 1/1"));
}

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

std::string framed(const std::string& records) {
    boost::crc_32_type crc;
    crc.process_bytes(records.data(), records.size());
    return fmt::format(R"({{"format":"olt-config","version":1,"crc32":{},"records":{}}})", crc.checksum(), records);
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
        {framed(R"({"x":{}})"), "element x is unknown"},
        {framed(R"({"ZebGCfg_pon_ont":{"4097":{}}})"), "has no record 4097"},
        {framed(R"({"ZebGCfg_pon_ont":[]})"), "is no object"},
        {framed(R"({"CommonGCfg_hostname":{"hostname":"b-"}})"), "Character not allowed"},
        {framed(R"({"CommonGCfg_hostname":{"hostname":"c"},"CommonGCfg_system_oob":{"enabled":false}})"),
         "No management interface is enabled"},
    };
    for (const auto& [text, reason] : cases) {
        root_.write(save_path + 1, text);
        lose_power();
        EXPECT_EQ(hostname(), "a") << text;
        EXPECT_THAT(logger_->texts(), Contains(HasSubstr(reason)));
    }
    std::ofstream(previous_file(file_)) << "damaged";
    lose_power();
    EXPECT_EQ(hostname(), "olt");
    EXPECT_THAT(logger_->texts(), Contains("Started with the factory configuration"));
    // Between the two renames of a save there may be no main file, but there is always a good one.
    std::filesystem::remove(file_);
    std::ofstream(previous_file(file_)) << good;
    lose_power();
    EXPECT_EQ(hostname(), "b");
    EXPECT_TRUE(configuration_exists());
}

TEST_F(SavedConfiguration, StaysAsItWasWhenASaveFails) {
    run_hostname("a");
    save();
    run_hostname("b");
    std::filesystem::create_directory(file_ + ".new"); // in the way
    EXPECT_EQ(save_running_configuration(client_->handle(), save_path), -1);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(save_running_configuration(client_->handle(), nullptr), -1);
    EXPECT_EQ(save_running_configuration(nullptr, save_path), -1);
    lose_power();
    EXPECT_EQ(hostname(), "a");
}

} // namespace
} // namespace xpon::cfgdb
