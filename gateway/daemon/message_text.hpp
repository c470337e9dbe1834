#pragma once

#include "xpon/core/json_tree.hpp"
#include "xpon/core/result.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace xpon::gateway {

/// A request of a page, without whatever session it named.
struct PageRequest {
    core::JsonTree tree;
    std::string path;
    std::string method;
};

/// Error InvalidInputArg with the reason for what is no request, or one that pages may not send: logins and logouts are
/// not theirs, because their answers tell ids.
core::Result<PageRequest> read_request(std::string_view text);
/// The same for a tree that has been read already.
core::Result<PageRequest> check_request(core::JsonTree tree);

/// The text for the daemon. Always printed anew: the daemon reads exactly what was checked here.
std::string print_for_session(const PageRequest& request, const std::string& api_session_id);

/// An answer of the daemon as it may reach a network: without the session's id and without layout. Numbers keep all
/// their digits. Empty when the text is no JSON object.
std::optional<std::string> print_for_page(std::string_view answer);

/// Whether the daemon does not know the session in whose name it was asked.
bool is_unknown_session(const std::string& answer);

/// `text` as a JSON string, with its quotation marks.
std::string quoted(const std::string& text);

} // namespace xpon::gateway
