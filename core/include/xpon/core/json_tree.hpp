#pragma once

#include <memory>
#include <new>

#include <cjson/cJSON.h>

namespace xpon::core {

struct JsonDeleter {
    void operator()(cJSON* tree) const {
        cJSON_Delete(tree);
    }
};

/// The one owner of a cJSON tree, until the tree is handed over with release().
using JsonTree = std::unique_ptr<cJSON, JsonDeleter>;

struct JsonTextDeleter {
    void operator()(char* text) const {
        cJSON_free(text);
    }
};

/// The owner of a text that cJSON printed.
using JsonText = std::unique_ptr<char, JsonTextDeleter>;

/// The tree as one line. Throws std::bad_alloc, also for a null tree: cJSON makes that of lack of memory alone.
inline JsonText print_line(const cJSON* tree) {
    JsonText text(cJSON_PrintUnformatted(tree));
    if (!text) {
        throw std::bad_alloc();
    }
    return text;
}

} // namespace xpon::core
