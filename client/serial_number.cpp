#include "xpon/client/serial_number.hpp"

#include <algorithm>
#include <array>
#include <charconv>

#include <fmt/format.h>

namespace xpon::client {
namespace {

constexpr std::size_t vendor_letters = 4;
constexpr std::size_t serial_bytes = 8;  // G.984.3
constexpr std::size_t record_bytes = 10; // the last two are 0

bool is_letter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

} // namespace

core::JsonTree parse_serial(std::string_view text) {
    std::array<int, record_bytes> bytes{};
    std::size_t known = 0;
    if (text.size() == vendor_letters + 2 * (serial_bytes - vendor_letters) &&
        std::ranges::all_of(text.substr(0, vendor_letters), is_letter)) {
        for (; known < vendor_letters; ++known) {
            bytes.at(known) = static_cast<unsigned char>(text[known]);
        }
        text.remove_prefix(vendor_letters);
    }
    if (text.size() != 2 * (serial_bytes - known)) {
        return nullptr;
    }
    for (; known < serial_bytes; ++known, text.remove_prefix(2)) {
        const auto* const end = text.data() + 2;
        if (text.front() == '-' || std::from_chars(text.data(), end, bytes.at(known), 16).ptr != end) {
            return nullptr;
        }
    }
    return core::JsonTree(cJSON_CreateIntArray(bytes.data(), static_cast<int>(bytes.size())));
}

std::string serial_text(const cJSON* bytes) {
    std::array<int, serial_bytes> values{};
    std::size_t known = 0;
    for (const auto* item = bytes == nullptr ? nullptr : bytes->child; item != nullptr && known < values.size();
         item = item->next) {
        values.at(known++) = item->valueint;
    }
    if (std::ranges::all_of(values, [](int value) { return value == 0; })) {
        return "";
    }
    std::string text;
    const bool has_letters = std::all_of(values.begin(), values.begin() + vendor_letters,
                                         [](int value) { return is_letter(static_cast<char>(value)); });
    for (std::size_t i = 0; i < values.size(); ++i) {
        text +=
            has_letters && i < vendor_letters ? fmt::format("{:c}", values.at(i)) : fmt::format("{:02X}", values.at(i));
    }
    return text;
}

} // namespace xpon::client
