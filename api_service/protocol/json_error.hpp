#pragma once

#include "api_service/core_names.hpp"
#include "xpon/error_texts/json_errors.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace xpon::api_service {

/// One error as a client sees it: the text of `index`, its parameters and the path of what the error is about.
class JsonError {
public:
    using Param = std::variant<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
                               std::int64_t, std::uint64_t, std::string, double>;

    JsonError(Json_errors index, std::string path, const std::shared_ptr<ILogger>& logger);

    /// Appends a parameter; the first is "p0". 64-bit integers travel as strings, so that no digit is lost.
    void add_param(Param param);

    /// The text of the index, from the error-text library.
    [[nodiscard]] Result<std::string> json_error_index_to_str() const;

    /// The error object, owned by the caller:
    /// {"message": {"key": TEXT, "params": {"p0": ..}}, "path": PATH}
    [[nodiscard]] Result<cJSON*> get_cjson() const;

private:
    Json_errors index_;
    std::string path_;
    std::vector<Param> params_;
    std::shared_ptr<ILogger> logger_;
};

} // namespace xpon::api_service
