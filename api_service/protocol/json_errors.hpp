#pragma once

#include "api_service/protocol/json_error.hpp"

#include <memory>
#include <string>
#include <vector>

namespace xpon::api_service {

/// The errors of one answer, in the order added.
class JsonErrors {
public:
    explicit JsonErrors(const std::shared_ptr<ILogger>& logger);

    void add_error(const JsonError& error);

    /// Appends the error objects of a JSON array, as the serialiser library reports them. Nothing is appended when
    /// one of them is malformed.
    Result<void> add_errors_from_cjson(const cJSON* errors);

    /// Appends each error's object to `array`.
    Result<void> copy_errors_to_cjson_array(cJSON* array) const;

    /// The printed array of all errors.
    [[nodiscard]] Result<std::string> get_json_string() const;

    [[nodiscard]] bool empty() const;

private:
    std::vector<JsonError> errors_;
    std::shared_ptr<ILogger> logger_;
};

} // namespace xpon::api_service
