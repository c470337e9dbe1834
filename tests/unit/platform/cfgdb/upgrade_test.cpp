// Another release ran before: its database, and its saved file, hold 4096 ONTs whose records have one key more or less
// than here, or a value that is too large for here.

#include "cfgdb/durable_file.hpp"
#include "serializer/field_errors.hpp"
#include "serializer/forgiving_json.hpp"
#include "serializer/object_json.hpp"
#include "serializer/table_description.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"
#include "tests/unit/platform/cfgdb/other_release.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <optional>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::cfgdb {
namespace {

using test::OtherRelease;
using testing::Contains;
using testing::HasSubstr;

constexpr unsigned ports = 16;
const std::string too_long(100, 'x');

class Upgrade : public testing::Test {
protected:
    Upgrade() {
        set_database_log(logger_);
        client_.emplace("TEST");
        std::vector<test::Edit> edits;
        for (unsigned port = 1; port <= ports; ++port) {
            for (unsigned ont = 1; ont <= onts_per_pon_port; ++ont) {
                edits.push_back(test::edit_ont(port, ont,
                                               fmt::format(R"({{"serial":[1,1,1,1,0,0,{},{},0,0],"description":"x",)"
                                                           R"("ont_template":1}})",
                                                           port, ont - 1)));
            }
        }
        test::apply(*client_, edits);
        EXPECT_EQ(test::commit(*client_), "");
        test::apply(*client_, {test::edit_ont(1, 1, R"({"description":"pending"})")});
    }
    ~Upgrade() override {
        set_database_log(nullptr);
    }

    void open_again() {
        client_.reset();
        logger_->clear();
        client_.emplace("TEST");
    }

    /// All ONTs are there, and the indexes know them.
    void expect_all_onts(const std::string& description) {
        for (std::uint16_t index = 0; index < ports * onts_per_pon_port; ++index) {
            const auto ont = test::stored<PonOnt>(*client_, Store::running, {index});
            ASSERT_EQ(ont.serial & 0xFFFFU, (index / onts_per_pon_port + 1U) << 8U | index % onts_per_pon_port);
            ASSERT_EQ(ont.ont_template, 1);
            ASSERT_EQ(ont.description, description);
        }
        ASSERT_TRUE(client_->rollback().has_value());
        test::apply(*client_, {test::edit_ont(1, 1, R"({"serial":[1,1,1,1,0,0,2,0,0,0]})")});
        EXPECT_THAT(test::commit(*client_), HasSubstr("already used"));
        ASSERT_TRUE(client_->rollback().has_value());
    }

    std::shared_ptr<test::RecordingLogger> logger_ = std::make_shared<test::RecordingLogger>();
    test::TemporaryOltRoot root_;
    std::optional<CfgDbWrapper> client_;
};

void set(cJSON& record, const char* key, const char* text) {
    cJSON_DeleteItemFromObjectCaseSensitive(&record, key);
    cJSON_AddStringToObject(&record, key, text);
}

TEST_F(Upgrade, OrDowngradeKeepsAllRecords) {
    struct Case {
        void (*alter)(OtherRelease::Fields& fields);
        void (*change)(cJSON& record);
        const char* description; ///< afterwards
        const char* pending;
        const char* line;
    };
    const Case cases[] = {
        {test::add_colour, [](cJSON& record) { cJSON_AddTrueToObject(&record, "colour"); }, "x", "pending",
         "ZebGCfg_pon_ont 1: colour: Unknown key is skipped (and 4096 more records)"},
        {test::widen_description, [](cJSON& record) { set(record, "description", too_long.c_str()); }, "", "",
         "ZebGCfg_pon_ont 1: description: Text is too long, 100 bytes of at most 63; it takes its default (and "
         "4096 more"},
        {test::drop_description, [](cJSON&) {}, "", "", "Started with the 4096 running records of another version"},
    };
    for (const auto& [alter, change, description, pending, line] : cases) {
        OtherRelease(alter).take_over(test::database_of(*client_), change);
        // A process that has the database open does not take what it cannot read for something else.
        EXPECT_THROW(test::stored<PonOnt>(*client_, Store::running), std::system_error);
        EXPECT_EQ(save_running_configuration(client_->handle(), "/configuration/save-config"), -1);
        EXPECT_EQ(errno, ESTALE);

        open_again();
        EXPECT_THAT(logger_->texts(), Contains(HasSubstr(line)));
        EXPECT_EQ(test::stored<PonOnt>(*client_, Store::candidate).description, std::string_view(pending));
        expect_all_onts(description);

        // What is saved now, a start takes as it is.
        ASSERT_EQ(save_running_configuration(client_->handle(), "/configuration/save-config"), 0);
        client_.reset();
        std::filesystem::remove_all(root_.path() / "run");
        open_again();
        EXPECT_THAT(logger_->texts(), testing::ElementsAre(testing::StartsWith("Started with the saved")));
        expect_all_onts(description);
        std::filesystem::remove_all(root_.path() / "configuration");
        test::apply(*client_, {test::edit_ont(1, 1, R"({"description":"pending"})")});
    }
}

// The other way: the other release reads what this one left.
TEST_F(Upgrade, LeavesRecordsThatTheOtherReleaseCanRead) {
    const auto& own = element(element_of<PonOnt>).table;
    const auto layout = serializer::DescribedTable::parse(serializer::describe(own));
    ASSERT_TRUE(layout.has_value());
    for (auto* const alter : {test::add_colour, test::drop_description, test::widen_description}) {
        const OtherRelease other(alter);
        const auto ont = test::stored<PonOnt>(*client_, Store::running, {4095});
        const serializer::Tree data(cJSON_CreateObject());
        serializer::FieldErrors errors;
        serializer::write_object(layout->table(), reinterpret_cast<const std::byte*>(&ont), *data, errors, nullptr);
        EXPECT_EQ(test::printed(data.get()),
                  test::printed(test::written(own, test::Record(reinterpret_cast<const std::byte*>(&ont),
                                                                reinterpret_cast<const std::byte*>(&ont + 1)))
                                    .get()));
        test::Record record(other.ont_table().size);
        const auto lines = serializer::read_what_fits(other.ont_table(), *data, record.data());
        EXPECT_EQ(lines.empty(), alter != test::drop_description);
        EXPECT_THAT(test::printed(test::written(other.ont_table(), record).get()),
                    testing::StartsWith(R"({"serial":[1,1,1,1,0,0,16,255,0,0],"enabled":true)"));
    }
}

TEST(Description, OfEveryTableServesToWriteItsRecords) {
    for (const auto& row : all_elements()) {
        const auto layout = serializer::DescribedTable::parse(serializer::describe(row.table));
        ASSERT_TRUE(layout.has_value()) << row.suffix;
        test::Record record;
        test::read(row.table, "{}", record);
        EXPECT_EQ(test::printed(test::written(layout->table(), record).get()),
                  test::printed(test::written(row.table, record).get()));
    }
}

TEST(Description, ThatLiesLeavesOutTheField) {
    for (const auto* const text : {R"({"size":8,"fields":[{"key":"a","kind":"u8","offset":8,"size":1}]})",
                                   R"({"size":8,"fields":[{"key":"a","kind":"u32","offset":0,"size":8}]})",
                                   R"({"size":8,"fields":[{"key":"a","kind":"blue","offset":0,"size":8}]})",
                                   R"({"size":8,"fields":[{"key":"a","kind":"enum","offset":0,"size":1}]})",
                                   R"({"size":8,"fields":[{"key":"a","kind":"array","offset":0,"size":8,"max":3,
                                      "element":{"kind":"u32","size":4}}]})",
                                   R"({"size":8,"fields":[{"key":"a","kind":"list","offset":0,"size":8,"max":2,
                                      "count_offset":8,"element":{"kind":"u32","size":4}}]})"}) {
        const auto layout = serializer::DescribedTable::parse(text);
        ASSERT_TRUE(layout.has_value());
        EXPECT_TRUE(layout->table().fields.empty()) << text;
    }
    EXPECT_FALSE(serializer::DescribedTable::parse("[").has_value());
}

} // namespace
} // namespace xpon::cfgdb
