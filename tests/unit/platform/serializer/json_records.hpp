#pragma once

#include "cfgdb/element.hpp"
#include "serializer/cjson_tree.hpp"
#include "serializer/record_json.hpp"
#include "xpon/core/json_tree.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::test {

/// A structure of any table.
using Record = std::vector<std::byte>;

template <class Structure>
const serializer::Table& table_of() {
    return cfgdb::element(cfgdb::element_of<Structure>).table;
}

/// The text of the tree, "" of none.
inline std::string printed(const cJSON* tree) {
    return tree == nullptr ? "" : core::print_line(tree).get();
}

/// Fills the record; gives the errors, null when there are none.
inline serializer::Tree read(const serializer::Table& table, const cJSON* data, Record& record) {
    record.assign(table.size, std::byte{0x55});
    cJSON* errors = nullptr;
    EXPECT_EQ(serializer::deserialize_record(table, data, record.data(), &errors), 0);
    return serializer::Tree(errors);
}

inline serializer::Tree read(const serializer::Table& table, const std::string& json, Record& record) {
    return read(table, serializer::Tree(cJSON_Parse(json.c_str())).get(), record);
}

inline serializer::Tree written(const serializer::Table& table, const Record& record) {
    serializer::Tree target(cJSON_CreateObject());
    cJSON* errors = nullptr;
    EXPECT_EQ(serializer::serialize_record(table, record.data(), target.get(), &errors), 0);
    EXPECT_EQ(errors, nullptr);
    return target;
}

} // namespace xpon::test
