#include "serializer/table_description.hpp"

#include "serializer/cjson_tree.hpp"

#include <algorithm>
#include <array>
#include <deque>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace xpon::serializer {
namespace {

/// A kind as descriptions name it. Names are for ever: programs of all versions know a kind by its name.
struct KindRow {
    Kind kind;
    const char* name;
    std::uint32_t size; ///< of the member; 0 = any
};

constexpr std::array kind_rows{
    KindRow{Kind::boolean, "boolean", 1},
    KindRow{Kind::u8, "u8", 1},
    KindRow{Kind::u16, "u16", 2},
    KindRow{Kind::u32, "u32", 4},
    KindRow{Kind::i8, "i8", 1},
    KindRow{Kind::i16, "i16", 2},
    KindRow{Kind::enumeration, "enum", 1},
    KindRow{Kind::text, "text", 0},
    KindRow{Kind::secret, "secret", 0},
    KindRow{Kind::ipv4, "ipv4", 4},
    KindRow{Kind::mac, "mac", 6},
    KindRow{Kind::serial, "serial", 8},
    KindRow{Kind::port_set, "port_set", 4},
    KindRow{Kind::vlan_set, "vlan_set", 512},
    KindRow{Kind::object, "object", 0},
    KindRow{Kind::array, "array", 0},
    KindRow{Kind::list, "list", 0},
};

void add_number(cJSON& object, const char* key, std::int64_t number) {
    add_member(object, key, owned(cJSON_CreateNumber(static_cast<double>(number))));
}

Tree describe_table(const Table& table);

Tree describe_field(const Field& field) {
    auto object = owned(cJSON_CreateObject());
    const auto* const row = std::ranges::find(kind_rows, field.kind, &KindRow::kind);
    add_member(*object, "key", owned(cJSON_CreateStringReference(field.key)));
    add_member(*object, "kind", owned(cJSON_CreateStringReference(row->name)));
    add_number(*object, "offset", field.offset);
    add_number(*object, "size", field.size);
    add_number(*object, "max", field.max);
    if (field.kind == Kind::list) {
        add_number(*object, "count_offset", field.count_offset);
    }
    if (!field.names.empty()) {
        auto names = owned(cJSON_CreateArray());
        for (const char* name : field.names) {
            append(*names, owned(cJSON_CreateStringReference(name)));
        }
        add_member(*object, "names", std::move(names));
    }
    if (field.child != nullptr) {
        add_member(*object, "child", describe_table(*field.child));
    }
    if (field.element != nullptr) {
        add_member(*object, "element", describe_field(*field.element));
    }
    return object;
}

Tree describe_table(const Table& table) {
    auto object = owned(cJSON_CreateObject());
    add_member(*object, "name", owned(cJSON_CreateStringReference(table.name)));
    add_number(*object, "size", table.size);
    auto fields = owned(cJSON_CreateArray());
    for (const auto& field : table.fields) {
        append(*fields, describe_field(field));
    }
    add_member(*object, "fields", std::move(fields));
    return object;
}

const char* text_of(const cJSON& object, const char* key) {
    const auto* value = cJSON_GetObjectItemCaseSensitive(&object, key);
    return cJSON_IsString(value) != 0 ? value->valuestring : "";
}

/// 0 for a number that is missing or that no layout has.
std::uint32_t number_of(const cJSON& object, const char* key) {
    constexpr double largest = std::numeric_limits<std::uint32_t>::max();
    const auto* value = cJSON_GetObjectItemCaseSensitive(&object, key);
    return cJSON_IsNumber(value) != 0 && value->valuedouble >= 0 && value->valuedouble <= largest
               ? static_cast<std::uint32_t>(value->valuedouble)
               : 0;
}

} // namespace

/// Everything that the table points at. Deques, because what they hold must not move.
struct DescribedTable::Contents {
    explicit Contents(Tree text) : tree(std::move(text)) {}

    /// Null when the description contradicts itself.
    const Table* read_table(const cJSON* object) {
        if (cJSON_IsObject(object) == 0) {
            return nullptr;
        }
        auto& own_fields = fields.emplace_back();
        const auto size = number_of(*object, "size");
        const cJSON* item = nullptr;
        cJSON_ArrayForEach(item, cJSON_GetObjectItemCaseSensitive(object, "fields")) {
            auto field = read_field(*item);
            if (field && std::uint64_t{field->offset} + field->size <= size && field->count_offset < size) {
                own_fields.push_back(*field);
            }
        }
        return &tables.emplace_back(Table{.name = text_of(*object, "name"),
                                          .fields = own_fields,
                                          .size = size,
                                          .rules = nullptr,
                                          .stamp = 0,
                                          .profile_kind = ""});
    }

    /// Empty for a field that cannot be written.
    std::optional<Field> read_field(const cJSON& object) {
        const std::string_view kind = text_of(object, "kind");
        const auto* const row = std::ranges::find(kind_rows, kind, &KindRow::name);
        Field field{.key = text_of(object, "key"),
                    .kind = row == kind_rows.end() ? Kind::boolean : row->kind,
                    .offset = number_of(object, "offset"),
                    .size = number_of(object, "size"),
                    .count_offset = number_of(object, "count_offset"),
                    .max = number_of(object, "max")};
        if (row == kind_rows.end() || field.size == 0 || (row->size != 0 && field.size != row->size)) {
            return {};
        }
        switch (field.kind) {
        case Kind::vlan_set:
            return field.max < 4096 ? std::optional(field) : std::nullopt;
        case Kind::enumeration:
            return read_names(object, field) ? std::optional(field) : std::nullopt;
        case Kind::object:
            field.child = read_table(cJSON_GetObjectItemCaseSensitive(&object, "child"));
            return field.child != nullptr && field.child->size == field.size ? std::optional(field) : std::nullopt;
        case Kind::array:
        case Kind::list:
            return read_element(object, field) ? std::optional(field) : std::nullopt;
        default:
            return field;
        }
    }

    bool read_names(const cJSON& object, Field& field) {
        auto& own_names = names.emplace_back();
        const cJSON* item = nullptr;
        cJSON_ArrayForEach(item, cJSON_GetObjectItemCaseSensitive(&object, "names")) {
            own_names.push_back(cJSON_IsString(item) != 0 ? item->valuestring : "");
        }
        field.names = own_names;
        field.max = static_cast<std::int64_t>(own_names.size()) - 1;
        return !own_names.empty();
    }

    bool read_element(const cJSON& object, Field& field) {
        std::uint32_t size = 0;
        if (const auto* child = cJSON_GetObjectItemCaseSensitive(&object, "child")) {
            field.child = read_table(child);
            size = field.child == nullptr ? 0 : field.child->size;
        } else if (const auto* element = cJSON_GetObjectItemCaseSensitive(&object, "element")) {
            const auto described = read_field(*element);
            field.element = described && described->offset == 0 ? &elements.emplace_back(*described) : nullptr;
            size = field.element == nullptr ? 0 : field.element->size;
        }
        return size != 0 && static_cast<std::uint64_t>(field.max) * size <= field.size;
    }

    Tree tree; ///< holds the texts
    std::deque<std::vector<Field>> fields;
    std::deque<std::vector<const char*>> names;
    std::deque<Field> elements;
    std::deque<Table> tables;
    const Table* root = nullptr;
};

std::string describe(const Table& table) {
    return core::print_line(describe_table(table).get()).get();
}

std::optional<DescribedTable> DescribedTable::parse(std::string_view text) {
    auto contents = std::make_unique<Contents>(Tree(cJSON_ParseWithLength(text.data(), text.size())));
    contents->root = contents->read_table(contents->tree.get());
    if (contents->root == nullptr) {
        return {};
    }
    return DescribedTable(std::move(contents));
}

DescribedTable::DescribedTable(std::unique_ptr<Contents> contents) : contents_(std::move(contents)) {}

DescribedTable::DescribedTable(DescribedTable&& other) noexcept = default;
DescribedTable& DescribedTable::operator=(DescribedTable&& other) noexcept = default;
DescribedTable::~DescribedTable() = default;

const Table& DescribedTable::table() const {
    return *contents_->root;
}

} // namespace xpon::serializer
