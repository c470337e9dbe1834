#include "obfuscation/base64url.hpp"

namespace xpon::obfuscation {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

} // namespace

void base64url_encode(std::span<const std::uint8_t> bytes, char* output) {
    std::uint32_t bits = 0;
    int count = 0;
    for (const auto byte : bytes) {
        bits = (bits << 8U) | byte;
        for (count += 8; count >= 6; count -= 6) {
            *output++ = alphabet[(bits >> static_cast<unsigned>(count - 6)) & 63U];
        }
    }
    if (count > 0) {
        *output = alphabet[(bits << static_cast<unsigned>(6 - count)) & 63U];
    }
}

std::optional<std::vector<std::uint8_t>> base64url_decode(std::string_view text) {
    if (text.size() % 4 == 1) {
        return {};
    }
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() * 3 / 4);
    std::uint32_t bits = 0;
    int count = 0;
    for (const char character : text) {
        const auto digit = alphabet.find(character);
        if (digit == std::string_view::npos) {
            return {};
        }
        bits = (bits << 6U) | static_cast<std::uint32_t>(digit);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes.push_back(static_cast<std::uint8_t>(bits >> static_cast<unsigned>(count)));
        }
    }
    const auto spare = bits & ((1U << static_cast<unsigned>(count)) - 1U);
    return spare == 0 ? std::optional(bytes) : std::nullopt;
}

} // namespace xpon::obfuscation
