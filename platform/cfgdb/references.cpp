#include "cfgdb/references.hpp"

#include <algorithm>
#include <functional>

namespace xpon::cfgdb {
namespace {

using serializer::Field;
using serializer::Role;
using serializer::Table;

ElementId element_of_table(const Table& table) {
    const auto rows = all_elements();
    const auto row = std::ranges::find(rows, &table, [](const Element& entry) { return &entry.table; });
    return static_cast<ElementId>(row - rows.begin());
}

void add_own(const Table& table, Bytes record, std::vector<Reference>& references) {
    for (const auto& field : table.fields) {
        const auto number =
            field.target == nullptr ? std::uint8_t{0} : std::to_integer<std::uint8_t>(record[field.offset]);
        if (number != 0) {
            references.push_back({element_of_table(field.target()), number});
        }
    }
}

/// Calls `visit` for the records that are nested in this one, by object, array or list.
void visit_nested(const Table& table, Bytes record, const std::function<void(const Table&, Bytes)>& visit) {
    for (const auto& field : table.fields) {
        const auto count = field.child == nullptr ? 0 : field.size / field.child->size;
        for (std::size_t i = 0; i < count; ++i) {
            visit(*field.child, record.subspan(field.offset + i * field.child->size, field.child->size));
        }
    }
}

void add_targets(const Table& table, std::vector<ElementId>& targets) {
    for (const auto& field : table.fields) {
        if (field.target != nullptr) {
            targets.push_back(element_of_table(field.target()));
        }
        if (field.child != nullptr) {
            add_targets(*field.child, targets);
        }
    }
}

} // namespace

std::vector<Reference> own_references(const Table& table, Bytes record) {
    std::vector<Reference> references;
    add_own(table, record, references);
    return references;
}

std::vector<Reference> all_references(const Table& table, Bytes record) {
    auto references = own_references(table, record);
    visit_nested(table, record, [&](const Table& nested, Bytes part) {
        const auto added = all_references(nested, part);
        references.insert(references.end(), added.begin(), added.end());
    });
    return references;
}

std::vector<ElementId> targets_of(ElementId id) {
    std::vector<ElementId> targets;
    add_targets(element(id).table, targets);
    return targets;
}

bool is_target(ElementId id) {
    static const auto targets = [] {
        std::vector<ElementId> all;
        for (const auto& row : all_elements()) {
            add_targets(row.table, all);
        }
        return all;
    }();
    return std::ranges::find(targets, id) != targets.end();
}

bool is_defined(const Table& table, Bytes record) {
    return std::ranges::all_of(table.fields, [&](const Field& field) {
        return field.role != Role::name || record[field.offset] != std::byte{0};
    });
}

std::vector<std::byte> without_labels(const Table& table, Bytes record) {
    std::vector<std::byte> contents(record.begin(), record.end());
    for (const auto& field : table.fields) {
        if (field.role == Role::content) {
            continue;
        }
        const auto first = contents.begin() + static_cast<std::ptrdiff_t>(field.offset);
        const bool counts = field.role == Role::name && *first != std::byte{0};
        std::fill_n(first, field.size, std::byte{0});
        *first = static_cast<std::byte>(counts);
    }
    return contents;
}

bool differ_in_content(const Table& table, Bytes left, Bytes right) {
    return without_labels(table, left) != without_labels(table, right);
}

} // namespace xpon::cfgdb
