#pragma once

#include <array>
#include <span>
#include <string_view>

namespace xpon::oltctl {

/// An element of the configuration: one record, or rows of them that are told apart by indices from 1.
struct Element {
    const char* path;
    /// The last number of each index, or the constant of the service that tells it; null behind the last index.
    std::array<const char*, 3> last;
    /// Who may write it; null when nobody may.
    const char* writer = "administrator";

    [[nodiscard]] unsigned depth() const;
};

/// All of them.
std::span<const Element> elements();
/// The element of that path, or null.
const Element* find_element(std::string_view path);

} // namespace xpon::oltctl
