#include "simulator/peers/change_notice.hpp"

#include "xpon/peer_side/elements.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

#define XPON_PATH_OF_ELEMENT(suffix, record, depth, size1, size2, path) std::string_view(path),
constexpr std::array element_paths{XPON_CFGDB_ELEMENTS(XPON_PATH_OF_ELEMENT)};
#undef XPON_PATH_OF_ELEMENT

} // namespace

std::optional<std::vector<service::Config_change>> parse_change_notice(std::span<const std::byte> payload) {
    if (payload.size() % sizeof(service::Config_change) != 0) {
        return std::nullopt;
    }
    std::vector<service::Config_change> changes(payload.size() / sizeof(service::Config_change));
    if (!changes.empty()) {
        std::memcpy(changes.data(), payload.data(), payload.size());
    }
    const bool all_known =
        std::ranges::all_of(changes, [](const auto& change) { return change.element < element_paths.size(); });
    return all_known ? std::optional(std::move(changes)) : std::nullopt;
}

std::string summary_of(std::span<const service::Config_change> changes) {
    std::array<std::size_t, element_paths.size()> counts{};
    for (const auto& change : changes) {
        ++counts.at(change.element);
    }
    std::string text;
    for (std::size_t element = 0; element < counts.size(); ++element) {
        if (counts.at(element) != 0) {
            text += fmt::format("{}{}={}", text.empty() ? "" : " ", element_paths.at(element), counts.at(element));
        }
    }
    return text;
}

} // namespace xpon::simulator
