#include "serializer/object_json.hpp"
#include "tests/unit/platform/serializer/json_records.hpp"
#include "tests/unit/platform/serializer/record_generator.hpp"

#include <set>

namespace xpon {
namespace {

using serializer::Kind;
using test::printed;
using test::Record;

class EveryRecord : public testing::TestWithParam<cfgdb::Element> {
protected:
    const serializer::Table& table_ = GetParam().table;
};

// The text that a client gets, sent back, makes the same record to the byte.
TEST_P(EveryRecord, SurvivesTheWayToTheClientAndBack) {
    auto table = table_;
    table.rules = nullptr; // generated fields may contradict each other
    for (unsigned variant = 0; variant < 64; ++variant) {
        const auto data = test::generate_object(table, variant);
        Record record;
        Record copy(table.size);
        ASSERT_EQ(printed(test::read(table, data.get(), record).get()), "") << printed(data.get());
        ASSERT_TRUE(serializer::copy_canonically(table, record.data(), copy.data()));
        ASSERT_EQ(record, copy);

        const auto text = printed(test::written(table, record).get());
        Record again;
        ASSERT_EQ(printed(test::read(table, text, again).get()), "") << text;
        ASSERT_EQ(record, again) << text;
    }
}

TEST_P(EveryRecord, HasDefaultsThatItAccepts) {
    Record record;
    ASSERT_EQ(printed(test::read(table_, "{}", record).get()), "");
    Record again;
    // Read from the tree itself, without printing it.
    ASSERT_EQ(printed(test::read(table_, test::written(table_, record).get(), again).get()), "");
    EXPECT_EQ(record, again);
}

TEST_P(EveryRecord, TakesTheLimitsOfItsFieldsAndNothingBeyond) {
    const std::set numbers{Kind::u8, Kind::u16, Kind::u32, Kind::i8, Kind::i16};
    for (const auto& field : table_.fields) {
        const bool is_number = numbers.contains(field.kind);
        const bool is_array = field.kind == Kind::array || field.kind == Kind::list;
        const std::string fault = is_number ? "out of range" : is_array ? "at most {p1} allowed" : "Text is too ";
        const auto is_refused = [&](std::int64_t size) {
            const serializer::Tree data(cJSON_CreateObject());
            serializer::add_member(*data, field.key, test::generate_value(field, size, 0));
            Record record;
            return printed(test::read(table_, data.get(), record).get()).find(fault) != std::string::npos;
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

INSTANTIATE_TEST_SUITE_P(Configuration, EveryRecord,
                         testing::ValuesIn(cfgdb::all_elements().begin(), cfgdb::all_elements().end()),
                         [](const auto& row) { return std::string(row.param.table.name); });

} // namespace
} // namespace xpon
