// The writer against the library: whatever the tree, both give the same bytes.

#include "api_service/protocol/json_writer.hpp"
#include "xpon/core/json_tree.hpp"

#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

constexpr double odd_numbers[] = {
    0.0,
    -0.0,
    1.0,
    -1.0,
    0.1,
    1.0 / 3,
    0.30000000000000004,
    3.0000000000000004,
    1e-4,
    1e-5,
    123456.5,
    -22.1F,
    2147483647.0,
    2147483648.0,
    -2147483648.0,
    -2147483649.0,
    4294967295.0,
    999999999999999.0,
    1e15,
    123456789012345678.0,
    9007199254740993.0,
    18446744073709551615.0,
    1e21,
    1e22,
    5e-324,
    2.2250738585072014e-308,
    1.7976931348623157e308,
    std::numeric_limits<double>::infinity(),
    -std::numeric_limits<double>::infinity(),
    std::numeric_limits<double>::quiet_NaN(),
};

class Trees {
public:
    core::JsonTree make(int depth) {
        switch (below(depth > 0 ? 11U : 9U)) {
        case 0:
            return core::JsonTree(cJSON_CreateNull());
        case 1:
            return core::JsonTree(cJSON_CreateBool(static_cast<cJSON_bool>(below(2))));
        case 2:
            return core::JsonTree(cJSON_CreateNumber(odd_numbers[below(std::size(odd_numbers))]));
        case 3:
            return core::JsonTree(cJSON_CreateNumber(static_cast<int>(random_())));
        case 4: // every kind of magnitude
            return core::JsonTree(
                cJSON_CreateNumber(std::ldexp(static_cast<double>(random_()), static_cast<int>(below(2000)) - 1000)));
        case 5: // as in measurements
            return core::JsonTree(cJSON_CreateNumber(static_cast<double>(below(100000)) / 100 - 500));
        case 6: // every count of digits, on both sides of the point
            return core::JsonTree(cJSON_CreateNumber(
                std::trunc(std::ldexp(static_cast<double>(random_()), -static_cast<int>(below(64)))) /
                std::pow(10, below(20))));
        case 7:
            return core::JsonTree(cJSON_CreateString(text().c_str()));
        case 8:
            return core::JsonTree(cJSON_CreateRaw("{ \"as it\" : stands }"));
        case 9:
            return array(depth - 1);
        default:
            return object(depth - 1);
        }
    }

private:
    std::size_t below(std::size_t limit) {
        return random_() % limit;
    }

    /// Any bytes but NUL, the special ones often; sometimes longer than what is written at once.
    std::string text() {
        std::string made(below(50) == 0 ? 3000 : below(20), ' ');
        for (auto& character : made) {
            character =
                static_cast<char>(below(3) == 0 ? "\"\\/\b\f\n\r\t\x7f\x01\x1f\xC3"[below(12)] : 1 + below(255));
        }
        return made;
    }

    core::JsonTree array(int depth) {
        core::JsonTree made(cJSON_CreateArray());
        for (auto count = below(5); count > 0; --count) {
            cJSON_AddItemToArray(made.get(), make(depth).release());
        }
        return made;
    }

    core::JsonTree object(int depth) {
        core::JsonTree made(cJSON_CreateObject());
        for (auto count = below(5); count > 0; --count) {
            cJSON_AddItemToObject(made.get(), text().c_str(), make(depth).release());
        }
        return made;
    }

    std::mt19937_64 random_{1};
};

std::string written(const cJSON* tree) {
    JsonWriter writer;
    EXPECT_TRUE(writer.tree(tree));
    return std::move(writer).take();
}

/// The same by way of the single steps, for what has steps of its own.
void write(JsonWriter& writer, const cJSON& value) {
    if (cJSON_IsObject(&value) != 0) {
        writer.begin_object();
        for (const auto* member = value.child; member != nullptr; member = member->next) {
            writer.key(member->string);
            write(writer, *member);
        }
        writer.end_object();
    } else if (cJSON_IsArray(&value) != 0) {
        writer.begin_array();
        for (const auto* item = value.child; item != nullptr; item = item->next) {
            write(writer, *item);
        }
        writer.end_array();
    } else if (cJSON_IsString(&value) != 0) {
        writer.text(value.valuestring);
    } else if (cJSON_IsNumber(&value) != 0 && value.valuedouble == value.valueint && !std::signbit(value.valuedouble)) {
        writer.integer(value.valueint);
    } else if (cJSON_IsNumber(&value) != 0) {
        writer.number(value.valuedouble);
    } else if (cJSON_IsBool(&value) != 0) {
        writer.boolean(cJSON_IsTrue(&value) != 0);
    } else {
        EXPECT_TRUE(writer.tree(&value));
    }
}

TEST(JsonWriter, WritesTheBytesOfTheLibrary) {
    Trees trees;
    for (int round = 0; round < 20'000; ++round) {
        const auto tree = trees.make(round % 7);
        const core::JsonText expected(cJSON_Print(tree.get()));
        ASSERT_EQ(written(tree.get()), expected.get());
        JsonWriter steps;
        write(steps, *tree);
        ASSERT_EQ(std::move(steps).take(), expected.get());
    }
}

TEST(JsonWriter, PrintsNothingThatTheLibraryRefuses) {
    cJSON odd{};
    for (const int type : {0, cJSON_Raw, cJSON_Array | cJSON_Object}) {
        odd.type = type;
        EXPECT_EQ(core::JsonText(cJSON_Print(&odd)), nullptr);
        EXPECT_FALSE(JsonWriter().tree(&odd));
    }
    EXPECT_FALSE(JsonWriter().tree(nullptr));
    odd.type = cJSON_String; // without a text
    EXPECT_EQ(written(&odd), core::JsonText(cJSON_Print(&odd)).get());
}

TEST(JsonWriter, TakesBackWhatWasBegunInVain) {
    JsonWriter writer;
    writer.begin_object();
    const auto mark = writer.mark();
    writer.key("a");
    writer.begin_object();
    writer.end_object();
    writer.take_back(mark);
    writer.key("b");
    writer.integer(std::numeric_limits<std::uint64_t>::max());
    writer.end_object();
    EXPECT_EQ(std::move(writer).take(), "{\n\t\"b\":\t18446744073709551615\n}");
}

TEST(JsonWriter, JoinsShortAndLongTexts) {
    for (const std::size_t size : {1U, 100U, 1'000'000U}) {
        const std::string text(size, '7');
        JsonWriter writer;
        writer.begin_array();
        writer.text("a text before");
        writer.raw(text);
        writer.boolean(true);
        writer.end_array();
        EXPECT_EQ(std::move(writer).take(), "[\"a text before\", " + text + ", true]");
    }
}

TEST(JsonWriter, WritesIntoTheMemoryOfTheTextBefore) {
    const char* kept = nullptr;
    for (const int items : {100'000, 90'000, 10, 100'000}) {
        JsonWriter writer;
        writer.begin_array();
        std::string expected;
        for (int item = 0; item < items; ++item) {
            writer.integer(item);
            expected += (item == 0 ? "[" : ", ") + std::to_string(item);
        }
        writer.end_array();
        auto text = std::move(writer).take();
        EXPECT_EQ(text, expected + "]");
        const bool is_long = items > 10;
        EXPECT_EQ(kept == text.data(), is_long && kept != nullptr) << items;
        kept = is_long ? text.data() : kept;
        JsonWriter::reuse(std::move(text));
    }
}

} // namespace
} // namespace xpon::api_service
