#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/index_range.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/core/logger.hpp"

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace xpon::api_service {

/// What is wrong with the request itself: other than `index_count` index strings, or no configuration type.
std::optional<Json_errors> find_request_error(const Request& request, std::size_t index_count);

/// The error response with the one error `code`, whose path is the method.
Response make_request_error(Json_errors code, const char* method, const std::shared_ptr<Session>& session,
                            const std::shared_ptr<core::ILogger>& logger);

/// The 16-bit indices that database functions take.
template <std::size_t N>
std::array<unsigned short, N> database_indices(const std::array<unsigned long, N>& element) {
    std::array<unsigned short, N> indices{};
    for (std::size_t level = 0; level < N; ++level) {
        indices[level] = static_cast<unsigned short>(element[level]);
    }
    return indices;
}

} // namespace xpon::api_service
