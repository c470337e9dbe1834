#pragma once

#include "api_service/core_names.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

namespace xpon::api_service {

/// How many objects stand around the data of an answer.
inline constexpr std::size_t data_depth = 1;

/// The data of a request or a response: one JSON tree, or its text as it will stand in the answer, or nothing. Tables
/// are given as text: the tree of thousands of records would take ten times the memory. Copies share the data, which
/// nobody changes.
class Payload {
public:
    Payload() = default;
    /// Freed by the tree's own deleter.
    template <class Deleter>
    explicit Payload(std::unique_ptr<cJSON, Deleter> tree) : tree_(std::move(tree)) {}
    /// `text` is made by a writer that begins at `data_depth`.
    explicit Payload(std::string text) : text_(std::make_shared<std::string>(std::move(text))) {}

    /// Null when there is no tree.
    [[nodiscard]] const cJSON* get() const {
        return tree_.get();
    }
    [[nodiscard]] bool is_text() const {
        return text_ != nullptr;
    }
    /// The text, which must be there; the payload is empty then. Nothing is copied for the last owner.
    std::string take_text() {
        const auto text = std::exchange(text_, nullptr);
        return text.use_count() == 1 ? std::move(*text) : *text;
    }
    [[nodiscard]] bool empty() const {
        return tree_ == nullptr && text_ == nullptr;
    }

private:
    std::shared_ptr<cJSON> tree_;
    std::shared_ptr<std::string> text_;
};

} // namespace xpon::api_service
