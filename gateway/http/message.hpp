#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace xpon::gateway {

class EventStream;

/// A request as it arrived, whole.
struct HttpRequest {
    std::string method = {};
    std::string target = {};
    std::vector<std::pair<std::string, std::string>> headers = {}; ///< names in lower case, in their order
    std::string body = {};
    std::string peer = {}; ///< the address that it came from
    bool is_secure = false;

    /// Without the query.
    [[nodiscard]] std::string_view path() const;
    /// Behind the question mark; "" without one.
    [[nodiscard]] std::string_view query() const;
    /// The first of that name; "" without one.
    [[nodiscard]] std::string_view header(std::string_view name) const;
    [[nodiscard]] bool has_several(std::string_view name) const;
};

using Headers = std::vector<std::pair<std::string_view, std::string>>;

/// An answer. The headers that every answer has are added when it is sent.
struct HttpResponse {
    unsigned status = 200;
    std::string content_type = {};
    std::string body = {};
    Headers headers = {};
    std::shared_ptr<EventStream> stream = {}; ///< goes out in place of the body, until it ends
    std::string user = {};                    ///< for the access log
    std::string api_path = {};                ///< the same: what a page asked the daemon for
};

/// Called once, also later, by the thread that handed it out.
using Respond = std::function<void(HttpResponse)>;

/// An answer with a JSON text, which nobody may keep.
HttpResponse json_response(unsigned status, std::string text);
/// {"error": code, "message": text}: every refusal of this program.
HttpResponse error_response(unsigned status, std::string_view code, std::string_view message);

} // namespace xpon::gateway
