#pragma once

#include "xpon/core/json_tree.hpp"
#include "xpon/core/result.hpp"

#include <optional>
#include <string>
#include <vector>

namespace xpon::client {

using Json = core::JsonTree;

/// One request, member by member as it goes out; empty members are left out.
struct Request {
    std::string path;
    std::string method;
    std::vector<std::string> indices = {};       ///< one list of numbers and ranges per level, such as "1-4,7"
    std::optional<std::string> config_type = {}; ///< "candidate" or "running"
    Json data = {};                              ///< any JSON value
};

/// An error of an answer: a text with placeholders, what goes in their place, and the element that it is about.
struct AnswerError {
    std::string text;
    std::vector<std::string> params; ///< p0, p1, ... ; numbers as they are printed
    std::string path;

    /// The text with the parameters in their places; parameters that it does not name stand behind it.
    [[nodiscard]] std::string message() const;
};

/// One answer, taken apart.
struct Answer {
    bool success = false;
    std::string session_id;
    Json data = {}; ///< null when the answer carries none
    std::vector<AnswerError> errors = {};

    /// Whether the request was carried out and nothing was wrong with it: a refused commit has success and an error.
    [[nodiscard]] bool is_good() const {
        return success && errors.empty();
    }
    /// Whether the daemon does not know the session of the request: it ended, or the daemon has been started since.
    [[nodiscard]] bool session_is_unknown() const;
};

/// The text of a request. `session_id` is empty for none.
core::Result<std::string> print_request(const Request& request, const std::string& session_id);

/// Fault no_answer with the reason when the text is no answer.
core::Result<Answer> parse_answer(const std::string& text);

} // namespace xpon::client
