#pragma once

#include "xpon/core/json_tree.hpp"

#include <string>
#include <string_view>

namespace xpon::bench {

/// What a floor does for an answer; README.md tells what each kind is.
class Answers {
public:
    /// `document`: the answer, text for text, of the kinds that give a certain one. Throws std::invalid_argument on an
    /// unknown kind, and on a document that is no answer.
    Answers(std::string_view kind, std::string document);

    /// The answer to a request. A NUL stands behind it. Valid until the next call.
    std::string_view operator()(const std::string& request) {
        return (this->*answer_)(request);
    }

private:
    using Answer = std::string_view (Answers::*)(const std::string&);
    static Answer find(std::string_view kind);

    std::string_view echo(const std::string& request);
    std::string_view parsed_and_printed(const std::string& request);
    std::string_view built(const std::string& request);
    std::string_view built_and_copied(const std::string& request);
    std::string_view text(const std::string& request);

    std::string_view print(const cJSON* tree);
    core::JsonTree envelope() const;

    Answer answer_;
    std::string document_;
    core::JsonTree tree_; ///< of document_
    core::JsonText printed_;
};

} // namespace xpon::bench
