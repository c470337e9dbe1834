#pragma once

#include "serializer/contradictions.hpp"
#include "serializer/field.hpp"
#include "serializer/stamp.hpp"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <type_traits>
#include <utility>

/// The vocabulary of the field tables. A member of the wrong type does not compile, nor does a contradiction inside
/// a row: `require` is never reached at run time.
namespace xpon::serializer {

/// Where a record keeps one of its members, and of which type: what a field builder gets.
template <class Type>
struct Member {
    const char* name;
    std::uint32_t offset;
};

consteval void require(bool condition) {
    if (!condition) {
        throw "the row contradicts itself";
    }
}

template <class Type>
consteval Field field_of(Kind kind, Member<Type> member) {
    return {.key = member.name, .kind = kind, .offset = member.offset, .size = sizeof(Type)};
}

template <class Number>
consteval Kind kind_of_number() {
    if constexpr (std::is_same_v<Number, std::uint8_t>) {
        return Kind::u8;
    } else if constexpr (std::is_same_v<Number, std::uint16_t>) {
        return Kind::u16;
    } else if constexpr (std::is_same_v<Number, std::uint32_t>) {
        return Kind::u32;
    } else if constexpr (std::is_same_v<Number, std::int8_t>) {
        return Kind::i8;
    } else {
        static_assert(std::is_same_v<Number, std::int16_t>);
        return Kind::i16;
    }
}

consteval Field boolean(Member<std::uint8_t> member, bool default_value) {
    auto field = field_of(Kind::boolean, member);
    field.max = 1;
    field.default_number = default_value ? 1 : 0;
    return field;
}

template <class Number>
consteval Field number(Member<Number> member, std::int64_t min, std::int64_t max, std::int64_t default_value,
                       std::int64_t step = 1) {
    auto field = field_of(kind_of_number<Number>(), member);
    field.min = min;
    field.max = max;
    field.step = step;
    field.default_number = default_value;
    require(std::in_range<Number>(min) && std::in_range<Number>(max));
    require(min <= default_value && default_value <= max && default_value % step == 0);
    return field;
}

template <class Enumeration, std::size_t count>
consteval Field enumeration(Member<Enumeration> member, const char* const (&names)[count],
                            std::type_identity_t<Enumeration> default_value) {
    static_assert(std::is_enum_v<Enumeration> && sizeof(Enumeration) == 1);
    auto field = field_of(Kind::enumeration, member);
    field.max = count - 1;
    field.names = names;
    field.default_number = static_cast<std::int64_t>(default_value);
    require(field.default_number <= field.max);
    return field;
}

/// `min` counts bytes; the longest text fills the array but for its NUL.
template <std::size_t size>
consteval Field text(Member<char[size]> member, Characters characters, std::int64_t min = 0,
                     const char* default_value = "") {
    auto field = field_of(Kind::text, member);
    field.characters = characters;
    field.min = min;
    field.max = size - 1;
    field.default_text = default_value;
    field.is_required = std::string_view(default_value).size() < static_cast<std::size_t>(min);
    require(std::string_view(default_value).size() < size);
    return field;
}

/// A text that is empty or has `min` bytes or more.
template <std::size_t size>
consteval Field optional_text(Member<char[size]> member, Characters characters, std::int64_t min) {
    auto field = text(member, characters, min);
    field.may_be_empty = true;
    field.is_required = false;
    return field;
}

/// A text that nothing depends on.
consteval Field label(Field text) {
    require(text.kind == Kind::text);
    text.role = Role::label;
    return text;
}

/// The text without which a record is not defined.
template <std::size_t size>
consteval Field name(Member<char[size]> member) {
    auto field = text(member, Characters::name);
    field.role = Role::name;
    return field;
}

/// The number from 1 of a record of another type; 0 = none.
template <class Target>
consteval Field reference(Member<std::uint8_t> member) {
    auto field = number(member, 0, record_count<Target>, 0);
    field.target = &record_table<Target>;
    return field;
}

/// `min` counts the bytes of the plain text of a secret that is set.
consteval Field secret(Member<char[56]> member, std::int64_t min = 0) {
    auto field = field_of(Kind::secret, member);
    field.min = min;
    field.max = 32;
    return field;
}

consteval Field ipv4(Member<std::uint32_t> member, std::uint32_t default_value = 0, std::uint32_t min = 0,
                     std::uint32_t max = std::numeric_limits<std::uint32_t>::max()) {
    auto field = field_of(Kind::ipv4, member);
    field.min = min;
    field.max = max;
    field.default_number = default_value;
    require(min <= default_value && default_value <= max);
    return field;
}

consteval std::uint32_t address(std::uint32_t first, std::uint32_t second, std::uint32_t third, std::uint32_t fourth) {
    return first << 24U | second << 16U | third << 8U | fourth;
}

consteval Field mac(Member<std::uint8_t[6]> member) {
    return field_of(Kind::mac, member);
}

consteval Field serial(Member<std::uint64_t> member) {
    return field_of(Kind::serial, member);
}

/// `default_value` has the form of the member: bit n-1 = port n.
consteval Field port_set(Member<std::uint32_t> member, std::int64_t ports, std::uint32_t default_value = 0) {
    auto field = field_of(Kind::port_set, member);
    field.min = 1;
    field.max = ports;
    field.default_number = default_value;
    require(ports <= 32);
    return field;
}

consteval Field vlan_set(Member<std::uint8_t[512]> member, const char* default_value = "") {
    auto field = field_of(Kind::vlan_set, member);
    field.min = 1;
    field.max = 4094;
    field.default_text = default_value;
    return field;
}

template <class Record>
consteval Field object(Member<Record> member, const Table& table) {
    auto field = field_of(Kind::object, member);
    field.child = &table;
    require(table.size == sizeof(Record));
    return field;
}

template <class Element, std::size_t count>
consteval Field array(Member<Element[count]> member, const Table& table) {
    auto field = field_of(Kind::array, member);
    field.max = count;
    field.child = &table;
    require(table.size == sizeof(Element));
    return field;
}

/// `element` describes one element; see element_member.
template <class Element, std::size_t count>
consteval Field array(Member<Element[count]> member, const Field& element) {
    auto field = field_of(Kind::array, member);
    field.max = count;
    field.element = &element;
    require(element.size == sizeof(Element) && element.offset == 0);
    return field;
}

/// The member to build the description of an element of type `Type` with.
template <class Type>
inline constexpr Member<Type> element_member{"", 0};

template <class Element, std::size_t count>
consteval Field list(Member<Element[count]> member, Member<std::uint8_t> element_count, const Table& table) {
    auto field = array(member, table);
    field.kind = Kind::list;
    field.count_offset = element_count.offset;
    const std::string_view key(member.name);
    const std::string_view counted(element_count.name);
    require(counted.starts_with(key) && counted.substr(key.size()) == "_count");
    return field;
}

/// Makes a function over the record's own type fit a table.
template <class Record, void (*rules)(const Record&, Contradictions&)>
void record_rules(const void* record, Contradictions& contradictions) {
    rules(*static_cast<const Record*>(record), contradictions);
}

template <class Record, std::size_t count>
consteval Table make_table(const char* name, const Field (&fields)[count], RecordRules rules = nullptr,
                           const char* profile_kind = "") {
    static_assert(std::is_standard_layout_v<Record> && std::is_trivially_copyable_v<Record>);
    static_assert(count <= most_fields);
    Stamp stamp;
    stamp.add(std::string_view(name));
    stamp.add(static_cast<std::int64_t>(sizeof(Record)));
    for (const auto& field : fields) {
        stamp.add(field);
    }
    return {.name = name,
            .fields = fields,
            .size = sizeof(Record),
            .rules = rules,
            .stamp = stamp.value(),
            .profile_kind = profile_kind};
}

} // namespace xpon::serializer

/// The member `member` of the record type `record`. The key of a field is its member's name.
#define XPON_MEMBER(record, member)                                                                                    \
    (xpon::serializer::Member<decltype(record::member)>{#member, static_cast<std::uint32_t>(offsetof(record, member))})
