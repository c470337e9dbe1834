#include "cfgdb/element.hpp"
#include "serializer/object_json.hpp"
#include "serializer/record_json.hpp"
#include "tests/unit/platform/serializer/record_generator.hpp"

#include <set>
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

/// A value of the field: a number, or a text or array of that size.
Tree value_of(const serializer::Field& field, std::int64_t size) {
    if (field.kind == serializer::Kind::text) {
        return Tree(cJSON_CreateString(std::string(static_cast<std::size_t>(size), 'a').c_str()));
    }
    if (field.kind != serializer::Kind::array && field.kind != serializer::Kind::list) {
        return Tree(cJSON_CreateNumber(static_cast<double>(size)));
    }
    Tree array(cJSON_CreateArray());
    for (std::int64_t i = 0; i < size; ++i) {
        cJSON_AddItemToArray(array.get(), cJSON_CreateObject());
    }
    return array;
}

TEST_P(EveryRecord, TakesTheLimitsOfItsFieldsAndNothingBeyond) {
    using serializer::Kind;
    const std::set numbers{Kind::u8, Kind::u16, Kind::u32, Kind::i8, Kind::i16};
    for (const auto& field : table_.fields) {
        const bool is_number = numbers.contains(field.kind);
        const bool is_array = field.kind == Kind::array || field.kind == Kind::list;
        const std::string fault = is_number ? "out of range" : is_array ? "at most {p1} allowed" : "Text is too ";
        const auto is_refused = [&](std::int64_t size) {
            const Tree data(cJSON_CreateObject());
            cJSON_AddItemToObject(data.get(), field.key, value_of(field, size).release());
            Record record(table_.size);
            return read_errors(table_, *data, record).find(fault) != std::string::npos;
        };
        if (is_number || is_array || field.kind == Kind::text) {
            EXPECT_FALSE(is_refused(field.max)) << field.key;
            EXPECT_TRUE(is_refused(field.max + 1)) << field.key;
        }
        if (is_number || (field.kind == Kind::text && field.min > 0 && !field.may_be_empty)) {
            EXPECT_FALSE(is_refused(field.min)) << field.key;
            EXPECT_TRUE(is_refused(field.min - 1)) << field.key;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Configuration, EveryRecord, testing::ValuesIn(every_element()),
                         [](const auto& row) { return std::string(row.param->table.name); });

} // namespace
} // namespace xpon
