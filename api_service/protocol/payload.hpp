#pragma once

#include "api_service/core_names.hpp"

#include <memory>

namespace xpon::api_service {

/// The data of a request or a response: one JSON tree, or none. Copies share the tree, which nobody changes.
class Payload {
public:
    Payload() = default;
    explicit Payload(JsonTree tree) : tree_(std::move(tree)) {}

    /// Null when the payload is empty.
    [[nodiscard]] const cJSON* get() const {
        return tree_.get();
    }
    [[nodiscard]] bool empty() const {
        return tree_ == nullptr;
    }

private:
    std::shared_ptr<cJSON> tree_;
};

} // namespace xpon::api_service
