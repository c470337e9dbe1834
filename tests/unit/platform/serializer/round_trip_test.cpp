#include "cfgdb/element.hpp"
#include "serializer/object_json.hpp"
#include "serializer/record_json.hpp"
#include "tests/unit/platform/serializer/record_generator.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace xpon {
namespace {

using serializer::Tree;
using Record = std::vector<std::byte>;

std::string printed(const cJSON& tree) {
    char* text = cJSON_Print(&tree);
    std::string result = text;
    cJSON_free(text);
    return result;
}

/// The errors' text, "" when there are none.
std::string read_errors(const serializer::Table& table, const cJSON& data, Record& record) {
    cJSON* errors = nullptr;
    EXPECT_EQ(serializer::deserialize_record(table, &data, record.data(), &errors), 0);
    const Tree owner(errors);
    return errors == nullptr ? "" : printed(*errors);
}

Tree written(const serializer::Table& table, const Record& record) {
    Tree target(cJSON_CreateObject());
    cJSON* errors = nullptr;
    EXPECT_EQ(serializer::serialize_record(table, record.data(), target.get(), &errors), 0);
    EXPECT_EQ(errors, nullptr);
    return target;
}

class EveryRecord : public testing::TestWithParam<const cfgdb::Element*> {
protected:
    const serializer::Table& table_ = GetParam()->table;
};

// The text that a client gets, sent back, makes the same record to the byte.
TEST_P(EveryRecord, SurvivesTheWayToTheClientAndBack) {
    std::mt19937 random(4711);
    for (int round = 0; round < 300; ++round) {
        const auto data = test::generate_object(table_, random);
        Record record(table_.size);
        Record copy(table_.size);
        // Generated fields may contradict each other; the field by field reader takes them nevertheless.
        serializer::FieldErrors errors;
        serializer::set_defaults(table_, record.data());
        serializer::read_object(table_, *data, record.data(), errors, nullptr);
        ASSERT_TRUE(errors.empty()) << printed(*data) << printed(*Tree(errors.release()));
        ASSERT_TRUE(serializer::copy_canonically(table_, record.data(), copy.data()));
        ASSERT_EQ(record, copy);

        const auto text = printed(*written(table_, record));
        const Tree parsed(cJSON_Parse(text.c_str()));
        Record again(table_.size);
        serializer::set_defaults(table_, again.data());
        serializer::read_object(table_, *parsed, again.data(), errors, nullptr);
        ASSERT_TRUE(errors.empty()) << text;
        ASSERT_EQ(record, again) << text;
    }
}

TEST_P(EveryRecord, HasDefaultsThatItAccepts) {
    const Tree empty(cJSON_CreateObject());
    Record record(table_.size);
    ASSERT_EQ(read_errors(table_, *empty, record), "");
    Record again(table_.size);
    // Read from the tree itself, without printing it.
    ASSERT_EQ(read_errors(table_, *written(table_, record), again), "");
    EXPECT_EQ(record, again);
    EXPECT_LE(record.size(), 4096U);
}

std::vector<const cfgdb::Element*> every_element() {
    std::vector<const cfgdb::Element*> elements;
    for (const auto& element : cfgdb::all_elements()) {
        elements.push_back(&element);
    }
    return elements;
}

INSTANTIATE_TEST_SUITE_P(Configuration, EveryRecord, testing::ValuesIn(every_element()),
                         [](const auto& row) { return std::string(row.param->table.name); });

} // namespace
} // namespace xpon
