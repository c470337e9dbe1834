#include "serializer/kinds/kind_functions.hpp"
#include "serializer/record_memory.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace xpon::serializer {
namespace {

/// Numbers that a serialiser made are raw text, so that a tree can be read back without being printed first.
std::optional<double> number_of(const cJSON& value) {
    if (cJSON_IsNumber(&value) != 0) {
        return value.valuedouble;
    }
    if (cJSON_IsRaw(&value) != 0 && value.valuestring != nullptr) {
        const std::string_view text(value.valuestring);
        double number = 0;
        const auto [end, fault] = std::from_chars(text.begin(), text.end(), number);
        if (fault == std::errc() && end == text.end()) {
            return number;
        }
    }
    return {};
}

void read(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    const auto number = expect_integer(value, field.min, field.max, errors, path);
    if (!number) {
        return;
    }
    if (*number % field.step != 0) {
        errors.add(Json_errors::not_a_multiple, path, {static_cast<double>(*number), static_cast<double>(field.step)});
        return;
    }
    store_number(field, record, *number);
}

Tree write(const Field& field, const std::byte* record, FieldErrors&, const Path&) {
    return make_integer(load_number(field, record));
}

void read_boolean(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    if (cJSON_IsBool(&value) == 0) {
        return wrong_type(errors, path, "boolean");
    }
    store_number(field, record, cJSON_IsTrue(&value) != 0 ? 1 : 0);
}

Tree write_boolean(const Field& field, const std::byte* record, FieldErrors&, const Path&) {
    return owned(cJSON_CreateBool(load_number(field, record) != 0 ? 1 : 0));
}

} // namespace

std::optional<std::int64_t> expect_integer(const cJSON& value, std::int64_t min, std::int64_t max, FieldErrors& errors,
                                           const Path& path) {
    const auto number = number_of(value);
    if (!number) {
        wrong_type(errors, path, "number");
        return {};
    }
    if (!std::isfinite(*number) || std::trunc(*number) != *number) {
        wrong_type(errors, path, "integer");
        return {};
    }
    const auto lower = static_cast<double>(min);
    const auto upper = static_cast<double>(max);
    if (*number < lower || *number > upper) {
        errors.add(Json_errors::out_of_range, path, {*number, lower, upper});
        return {};
    }
    return static_cast<std::int64_t>(*number);
}

Tree make_integer(std::int64_t value) {
    std::array<char, std::numeric_limits<std::int64_t>::digits10 + 3> text{};
    std::to_chars(text.begin(), text.end() - 1, value);
    auto tree = owned(cJSON_CreateRaw(text.data()));
    tree->valuedouble = static_cast<double>(value);
    tree->valueint = static_cast<int>(value);
    return tree;
}

constinit const KindFunctions number_functions{set_default_number, read, write, copy_bytes};
constinit const KindFunctions boolean_functions{set_default_number, read_boolean, write_boolean, copy_bytes};

} // namespace xpon::serializer
