#pragma once

#include "api_service/protocol/payload.hpp"

#include <optional>
#include <string>
#include <vector>

namespace xpon::api_service {

/// Which configuration a request is about; written "candidate" and "running".
enum class ConfigurationType { Candidate = 0, Running = 1 };

/// One parsed request frame.
struct Request {
    std::optional<std::string> session_id;
    std::string path;   ///< dotted route path
    std::string method; ///< such as "get" or "command"
    /// Index ranges, one per level, with indices counted from 1; pre-hooks may rewrite them.
    std::vector<std::string> indices;
    std::optional<ConfigurationType> config_type;
    Payload data;
};

} // namespace xpon::api_service
