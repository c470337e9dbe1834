#include "gateway/daemon/message_text.hpp"

#include "xpon/client/message.hpp"

#include <new>
#include <utility>

namespace xpon::gateway {
namespace {

using core::Error;
using core::ErrorPayload;
using core::Result;

constexpr auto session_key = "session_id";
constexpr std::size_t longest_refusal = 1024; ///< bytes: longer answers need not be read to know that they are none

ErrorPayload refused(std::string why) {
    return {Error::InvalidInputArg, std::move(why)};
}

/// One pass over a text that is JSON: blanks between tokens are dropped, and one member of the outermost object.
class AnswerPrinter {
public:
    explicit AnswerPrinter(std::string_view answer) : rest_(answer) {
        printed_.reserve(answer.size());
    }

    std::optional<std::string> print() {
        while (!rest_.empty()) {
            const char c = rest_.front();
            if (c == '"') {
                take(string_size());
            } else if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
                rest_.remove_prefix(1);
            } else if (!take_structure(c)) {
                return std::nullopt;
            }
        }
        return was_object_ && depth_ == 0 ? std::optional(std::move(printed_)) : std::nullopt;
    }

private:
    [[nodiscard]] std::size_t string_size() const {
        for (std::size_t i = 1; i < rest_.size(); ++i) {
            if (rest_[i] == '"') {
                return i + 1;
            }
            i += rest_[i] == '\\' ? 1 : 0;
        }
        return rest_.size();
    }

    bool take_structure(char c) {
        if (was_object_ && depth_ == 0) {
            return false; // something stands behind the object
        }
        if (c == '{' || c == '[') {
            take(1);
            if (++depth_ == 1) {
                was_object_ = c == '{';
                member_ = printed_.size();
                return was_object_;
            }
            return true;
        }
        if (depth_ == 1 && (c == ',' || c == '}')) {
            end_member();
        }
        depth_ -= c == '}' || c == ']' ? 1 : 0;
        if (c == ',' && depth_ == 1 && printed_.back() == '{') {
            rest_.remove_prefix(1); // the member in front of it is gone
        } else {
            take(1);
        }
        if (c == ',' && depth_ == 1) {
            member_ = printed_.size();
        }
        return true;
    }

    void end_member() {
        if (std::string_view(printed_).substr(member_).starts_with("\"session_id\":")) {
            printed_.resize(member_);
            if (printed_.back() == ',') {
                printed_.pop_back();
            }
            member_ = printed_.size();
        }
    }

    void take(std::size_t count) {
        printed_ += rest_.substr(0, count);
        rest_.remove_prefix(count);
    }

    std::string_view rest_;
    std::string printed_;
    int depth_ = 0;
    bool was_object_ = false;
    std::size_t member_ = 0; // where the current member of the outermost object begins in `printed_`
};

} // namespace

Result<PageRequest> read_request(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) {
        return refused("The request holds a NUL byte");
    }
    const char* end = nullptr;
    core::JsonTree tree(cJSON_ParseWithLengthOpts(text.data(), text.size(), &end, 0));
    if (!tree ||
        std::string_view(end, text.data() + text.size()).find_first_not_of(" \t\r\n") != std::string_view::npos) {
        return refused("The request is not a JSON text");
    }
    return check_request(std::move(tree));
}

Result<PageRequest> check_request(core::JsonTree tree) {
    if (!cJSON_IsObject(tree.get())) {
        return refused("The request is not a JSON object");
    }
    const char* path = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(tree.get(), "path"));
    const char* method = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(tree.get(), "method"));
    if (path == nullptr || method == nullptr) {
        return refused("The request needs the texts \"path\" and \"method\"");
    }
    PageRequest request{.tree = nullptr, .path = path, .method = method};
    if (request.method == "auth" || request.path == "auth" || request.path == "unauth") {
        return refused("Use /api/login and /api/logout");
    }
    while (cJSON_GetObjectItemCaseSensitive(tree.get(), session_key) != nullptr) {
        cJSON_DeleteItemFromObjectCaseSensitive(tree.get(), session_key);
    }
    request.tree = std::move(tree);
    return request;
}

std::string print_for_session(const PageRequest& request, const std::string& api_session_id) {
    const core::JsonTree whole(cJSON_CreateObject());
    if (!whole || cJSON_AddStringToObject(whole.get(), session_key, api_session_id.c_str()) == nullptr) {
        throw std::bad_alloc();
    }
    const cJSON* member = nullptr;
    cJSON_ArrayForEach(member, request.tree.get()) {
        if (cJSON_AddItemReferenceToObject(whole.get(), member->string, const_cast<cJSON*>(member)) == 0) {
            throw std::bad_alloc();
        }
    }
    return core::print_line(whole.get()).get();
}

std::optional<std::string> print_for_page(std::string_view answer) {
    return AnswerPrinter(answer).print();
}

bool is_unknown_session(const std::string& answer) {
    if (answer.size() > longest_refusal) {
        return false;
    }
    const auto parsed = client::parse_answer(answer);
    return parsed && parsed.value().session_is_unknown();
}

std::string quoted(const std::string& text) {
    const core::JsonTree tree(cJSON_CreateString(text.c_str()));
    return core::print_line(tree.get()).get();
}

} // namespace xpon::gateway
