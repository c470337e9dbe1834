#pragma once

#include "xpon/peer_side/elements.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace xpon::serializer {

class Contradictions;
struct Table;

enum class Kind : std::uint8_t {
    boolean, ///< uint8_t 0 or 1
    u8,
    u16,
    u32,
    i8,
    i16,
    enumeration, ///< uint8_t, position in `names`
    text,        ///< NUL-terminated char array, the rest zero
    secret,      ///< the same, in obfuscated form; limits count the bytes of the plain text
    ipv4,        ///< uint32_t, first octet most significant
    mac,         ///< uint8_t[6]
    serial,      ///< uint64_t, the first eight of ten bytes, most significant first
    port_set,    ///< uint32_t, bit n-1 = port n; `max` ports
    vlan_set,    ///< uint8_t[512], bit v = VLAN v
    object,      ///< nested record of table `child`
    array,       ///< `max` elements, always written in full
    list,        ///< up to `max` elements, with their count in a member of its own
};

/// What a text may consist of.
enum class Characters : std::uint8_t {
    text,  ///< UTF-8 without control characters
    ascii, ///< 0x20 to 0x7E
    name,  ///< letters, digits, blank and _ . : / - @ + #; first a letter, digit or +
    host,  ///< host name [RFC 1123] or IPv4 address
    label, ///< one label of such a name
    hex,   ///< pairs of hexadecimal digits
};

/// What depends on a field.
enum class Role : std::uint8_t {
    content,
    label, ///< nothing: it tells people what the record is
    name,  ///< a label, but a record without it is not defined
};

/// One key of a record: the only description of it. Made by the builders of field_builders.hpp.
struct Field {
    const char* key = "";
    Kind kind = Kind::boolean;
    Characters characters = Characters::text;
    bool may_be_empty = false; ///< text: empty is allowed although `min` is greater than 0
    bool is_required = false;  ///< text: has no default, so that a missing key counts as one that is too short
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
    std::uint32_t count_offset = 0; ///< list: the uint8_t member that counts its elements
    std::int64_t min = 0;           ///< number, address, or bytes of a text
    std::int64_t max = 0;           ///< the same, or elements of an array or list, or ports
    std::int64_t step = 1;
    std::int64_t default_number = 0;
    Role role = Role::content;
    const Table& (*target)() = nullptr; ///< of a reference: the record type that it names by number; 0 = none
    const char* default_text = "";      ///< text, vlan_set
    std::span<const char* const> names{};
    const Table* child = nullptr;   ///< object, or array and list of objects
    const Field* element = nullptr; ///< array and list of anything else; its offset is 0
};

/// Checks between fields of one record, run when every field is good.
using RecordRules = void (*)(const void* record, Contradictions& contradictions);

/// The description of a record type. Tables live as long as the program.
struct Table {
    const char* name;
    std::span<const Field> fields;
    std::uint32_t size;
    RecordRules rules;
    std::uint64_t stamp;      ///< changes with everything that changes the meaning of a stored record
    const char* profile_kind; ///< what kind of profile it is called, such as "dba"; empty for what is none
};

/// The description of a record type of the configuration; defined beside its field table in records/.
template <class Record>
const Table& record_table();

#define XPON_DECLARE_TABLE(suffix, record, depth, size1, size2, path)                                                  \
    template <>                                                                                                        \
    const Table& record_table<cfgdb::record>();
XPON_CFGDB_ELEMENTS(XPON_DECLARE_TABLE)
#undef XPON_DECLARE_TABLE

/// How many records of a type there are; of one that others refer to, by the first index.
template <class Record>
extern const std::uint16_t record_count;

#define XPON_COUNT_RECORDS(suffix, record, depth, size1, size2, path)                                                  \
    template <>                                                                                                        \
    inline constexpr std::uint16_t record_count<cfgdb::record> = size1;
XPON_CFGDB_ELEMENTS(XPON_COUNT_RECORDS)
#undef XPON_COUNT_RECORDS

/// Null when no field of the table has the key.
inline const Field* find_field(const Table& table, std::string_view key) {
    const auto found =
        std::ranges::find(table.fields, key, [](const Field& field) { return std::string_view(field.key); });
    return found == table.fields.end() ? nullptr : &*found;
}

/// Fields that a table may have: the reader keeps one slot each on its stack.
inline constexpr std::size_t most_fields = 32;

} // namespace xpon::serializer
