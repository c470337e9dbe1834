#pragma once

#include "api_service/protocol/index_range.hpp"
#include "api_service/protocol/request.hpp"
#include "xpon/error_texts/json_errors.hpp"

#include <array>
#include <cstddef>
#include <optional>
#include <utility>
#include <variant>

namespace xpon::api_service {

/// The records that a request addresses, or the fault of the request that keeps them unknown: other than N index
/// strings, no configuration type or another than the `only` one, or indices that do not parse.
template <std::size_t N>
std::variant<IndexRange<N>, Json_errors> addressed_records(const Request& request,
                                                           std::optional<ConfigurationType> only = std::nullopt) {
    if (request.indices.size() != N) {
        return Json_errors::wrong_index_count;
    }
    if (!request.config_type || (only && request.config_type != only)) {
        return Json_errors::wrong_config_type;
    }
    auto range = IndexRange<N>::from_strings(request.indices);
    if (!range) {
        return Json_errors::cannot_parse;
    }
    return std::move(range).value();
}

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
