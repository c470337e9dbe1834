#pragma once

#include "api_service/core_names.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace xpon::api_service {

/// Between the JSON text of a frame and the Request and Response records.
class RequestParser {
public:
    explicit RequestParser(const std::shared_ptr<ILogger>& logger);

    /// Unknown keys are ignored; of a repeated key the first counts.
    [[nodiscard]] Result<Request> parse_request(const std::string& frame) const;

    /// Data that is text is not copied when the response is handed over.
    [[nodiscard]] Result<std::string> make_response(Response response) const;

    /// The string under `key`, which must be there.
    [[nodiscard]] Result<std::string> get_string(cJSON* object, const std::string& key) const;

private:
    [[nodiscard]] Result<std::vector<std::string>> get_indices(const cJSON* object) const;

    std::shared_ptr<ILogger> logger_;
};

/// The string under `key`; empty when the key is absent or its value is not a string.
std::optional<std::string> get_maybe_string(cJSON* object, std::string_view key);

} // namespace xpon::api_service
