#pragma once

#include "xpon/core/json_tree.hpp"

#include <new>

namespace xpon::serializer {

using Tree = core::JsonTree;

/// Takes over what a cJSON_Create function returned. cJSON makes null of one thing only: lack of memory.
inline Tree owned(cJSON* created) {
    if (created == nullptr) {
        throw std::bad_alloc();
    }
    return Tree(created);
}

/// Appends to an object under a key that lives as long as the program; it is not copied.
inline void add_member(cJSON& object, const char* constant_key, Tree value) {
    if (cJSON_AddItemToObjectCS(&object, constant_key, value.get()) == 0) {
        throw std::bad_alloc();
    }
    static_cast<void>(value.release());
}

inline void append(cJSON& array, Tree value) {
    if (cJSON_AddItemToArray(&array, value.get()) == 0) {
        throw std::bad_alloc();
    }
    static_cast<void>(value.release());
}

} // namespace xpon::serializer
