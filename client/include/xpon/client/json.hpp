#pragma once

#include <memory>

#include <cjson/cJSON.h>

namespace xpon::client {

struct JsonDeleter {
    void operator()(cJSON* tree) const {
        cJSON_Delete(tree);
    }
};

/// The one owner of a JSON tree.
using Json = std::unique_ptr<cJSON, JsonDeleter>;

} // namespace xpon::client
