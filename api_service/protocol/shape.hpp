#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>
#include <type_traits>

// What stands in the data of requests and answers. The descriptions are constants beside the code that writes and reads
// the data, made from its own tables; schemas and type declarations for clients are made from them.

namespace xpon::api_service {

struct Shape;

/// A key of an object.
struct Member {
    std::string_view key;
    const Shape* shape = nullptr;
    const char* about = ""; ///< unit, or what a value stands for
    bool is_optional = false;
};

/// The values that one place can have.
struct Shape {
    enum class Form : std::uint8_t { anything, integer, number, text, array, object, one_of, element };

    Form form = Form::anything;
    const char* name = "";                ///< what programs call it, such as "DhcpSession"; empty for what needs none
    std::int64_t min = 0;                 ///< integer: its least value; text and array: their least length
    std::uint64_t max = 0;                ///< the greatest; 0 of a text or array: any
    std::string_view pattern{};           ///< text: ECMA 262
    std::span<const char* const> texts{}; ///< text: one of these, where there are any
    const char* (*text_of)(unsigned value) = nullptr; ///< text: one of those of the values 0 to 255
    const Shape* item = nullptr;             ///< array: of each item; object: of each key of the form `key_format`
    std::string_view key_format{};           ///< object: {} stands for a number from 1
    std::span<const Member> members{};       ///< object
    std::span<const Shape* const> choices{}; ///< one_of
    std::string_view path{};                 ///< element: of the configuration, whose record stands here
};

/// How many index strings a request has.
enum class IndexCount : std::uint8_t { none, one, none_or_one, one_or_two, none_or_two, some };

/// What a route takes and gives, beyond path, method and session.
struct RouteShape {
    IndexCount indices = IndexCount::none;
    const Shape* request = nullptr; ///< its data; null: none
    const Shape* answer = nullptr;  ///< its data; null: none
    bool takes_config_type = false;
    bool has_errors_with_success = false;
};

/// What has no parameters and answers that it has been done.
inline constexpr RouteShape acknowledgement{};

template <class Integer>
constexpr Shape integer_shape(Integer min = std::numeric_limits<Integer>::min(),
                              Integer max = std::numeric_limits<Integer>::max()) {
    return {
        .form = Shape::Form::integer, .min = static_cast<std::int64_t>(min), .max = static_cast<std::uint64_t>(max)};
}

constexpr Member as_member(const Member& member) {
    return member;
}

/// The members that some tables have together: of fields, of counters, or of members.
template <const auto&... tables>
inline constexpr auto members_of = [] {
    std::array<Member, (0 + ... + std::size(tables))> all;
    [[maybe_unused]] auto* next = all.begin();
    ((next = std::ranges::transform(tables, next, [](const auto& row) { return as_member(row); }).out), ...);
    return all;
}();

template <const auto&... tables>
inline constexpr Shape object_of{.form = Shape::Form::object, .members = members_of<tables...>};

template <const Shape& item>
inline constexpr Shape array_of{.form = Shape::Form::array, .item = &item};

template <const Shape&... choices>
inline constexpr const Shape* choices_of[] = {&choices...};

/// An object that has exactly the members of one of these.
template <const Shape&... choices>
inline constexpr Shape one_of{.form = Shape::Form::one_of, .choices = choices_of<choices...>};

/// A text that is one of a table's.
template <const auto& texts>
inline constexpr Shape text_among{.form = Shape::Form::text, .texts = texts};

constexpr Shape named(const char* name, Shape shape) {
    shape.name = name;
    return shape;
}

namespace shapes {

inline constexpr Shape anything{};
inline constexpr Shape number{.form = Shape::Form::number};
inline constexpr Shape text{.form = Shape::Form::text};
inline constexpr Shape byte = integer_shape<std::uint8_t>();
inline constexpr Shape flag = integer_shape<std::uint8_t>(0, 1);
inline constexpr Shape mac{.form = Shape::Form::text, .pattern = "^[0-9A-F]{2}(:[0-9A-F]{2}){5}$"};
inline constexpr Shape ipv4{.form = Shape::Form::text,
                            .pattern = "^((25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])(\\.(?!$)|$)){4}$"};
inline constexpr Shape serial{.form = Shape::Form::array, .min = 10, .max = 10, .item = &byte};

} // namespace shapes

/// A number, a text in a buffer of the device, or an array of numbers; other types are texts.
template <class T>
inline constexpr Shape shape_of = [] {
    using Item = std::remove_extent_t<T>;
    if constexpr (std::is_integral_v<T>) {
        return integer_shape<T>();
    } else if constexpr (std::is_floating_point_v<T>) {
        return shapes::number;
    } else if constexpr (std::is_bounded_array_v<T> && !std::is_same_v<Item, char>) {
        constexpr auto count = std::extent_v<T>;
        return Shape{.form = Shape::Form::array, .min = count, .max = count, .item = &shape_of<Item>};
    } else {
        return shapes::text;
    }
}();

} // namespace xpon::api_service
