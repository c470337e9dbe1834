#include "simulator/simulation/commit_summary.hpp"

#include "xpon/peer_side/elements.hpp"

#include <array>
#include <string_view>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

#define XPON_PATH_OF_ELEMENT(suffix, record, depth, size1, size2, path) std::string_view(path),
constexpr std::array element_paths{XPON_CFGDB_ELEMENTS(XPON_PATH_OF_ELEMENT)};
#undef XPON_PATH_OF_ELEMENT

} // namespace

std::string summary_of(std::span<const service::Config_change> changes) {
    std::array<std::size_t, element_paths.size()> counts{};
    for (const auto& change : changes) {
        if (change.element < counts.size()) {
            ++counts.at(change.element);
        }
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
