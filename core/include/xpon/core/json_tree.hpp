#pragma once

#include <memory>

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

} // namespace xpon::core
