#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace xpon::obfuscation {

/// Characters that `size` bytes take in base64url without padding [RFC 4648 5].
constexpr std::size_t base64url_size(std::size_t size) {
    return (size * 4 + 2) / 3;
}

/// Writes base64url_size(bytes.size()) characters, without a NUL.
void base64url_encode(std::span<const std::uint8_t> bytes, char* output);

/// Empty for a character outside the alphabet, an impossible length or spare bits that are not zero: every byte
/// string has exactly one accepted form.
std::optional<std::vector<std::uint8_t>> base64url_decode(std::string_view text);

} // namespace xpon::obfuscation
