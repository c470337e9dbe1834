#include "client/oltctl/catalogue/catalogue.hpp"

#include <algorithm>
#include <cctype>
#include <string>

namespace xpon::oltctl {
namespace {

/// "servers.0.address" as "servers[].address".
std::string without_positions(std::string_view key) {
    std::string plain;
    while (!key.empty()) {
        const auto dot = std::min(key.find('.'), key.size());
        const auto step = key.substr(0, dot);
        key.remove_prefix(std::min(key.size(), dot + 1));
        const bool is_position =
            std::ranges::all_of(step, [](unsigned char letter) { return std::isdigit(letter) != 0; });
        plain += is_position ? "[]" : (plain.empty() ? "" : ".") + std::string(step);
    }
    return plain;
}

} // namespace

const CatalogueField* find_field(std::string_view element, std::string_view key) {
    const auto plain = without_positions(key);
    const auto fields = catalogue_fields();
    const auto found = std::ranges::find_if(
        fields, [&](const CatalogueField& field) { return field.element == element && field.key == plain; });
    return found == fields.end() ? nullptr : &*found;
}

} // namespace xpon::oltctl
