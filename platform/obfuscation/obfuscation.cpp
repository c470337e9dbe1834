#include "xpon/obfuscation/obfuscation.h"

#include "obfuscation/base64url.hpp"
#include "xpon/core/c_function.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include <boost/crc.hpp>

namespace {

using namespace xpon;
using namespace xpon::obfuscation;

constexpr std::string_view family = "$ob";
constexpr std::string_view prefix = "$ob1$";
constexpr std::size_t longest_text = 1024;
constexpr std::size_t checksum_size = 4;

std::uint32_t checksum(std::span<const std::uint8_t> bytes) {
    boost::crc_32_type crc;
    crc.process_bytes(bytes.data(), bytes.size());
    return crc.checksum();
}

/// XORs the bytes with the SplitMix64 stream of `seed`. Doing it twice gives the bytes back.
void apply_stream(std::uint64_t seed, std::span<std::uint8_t> bytes) {
    std::uint64_t output = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i % 8 == 0) {
            seed += 0x9E3779B97F4A7C15U;
            output = seed;
            output = (output ^ (output >> 30U)) * 0xBF58476D1CE4E5B9U;
            output = (output ^ (output >> 27U)) * 0x94D049BB133111EBU;
            output ^= output >> 31U;
        }
        bytes[i] ^= static_cast<std::uint8_t>(output >> (56U - 8U * (i % 8)));
    }
}

void obfuscate(std::string_view text, char* output) {
    if (text.size() > longest_text) {
        core::fail_with(EMSGSIZE);
    }
    std::vector<std::uint8_t> bytes(checksum_size + text.size());
    const std::span body(bytes.data() + checksum_size, text.size());
    std::ranges::copy(text, body.begin());
    const auto sum = checksum(body);
    for (std::size_t i = 0; i < checksum_size; ++i) {
        bytes[i] = static_cast<std::uint8_t>(sum >> (24U - 8U * i));
    }
    apply_stream(sum, body);
    std::ranges::copy(prefix, output);
    base64url_encode(bytes, output + prefix.size());
    output[prefix.size() + base64url_size(bytes.size())] = '\0';
}

void deobfuscate(std::string_view text, char* output) {
    if (text.empty()) {
        *output = '\0';
        return;
    }
    if (!text.starts_with(prefix)) {
        core::fail_with(text.starts_with(family) ? ENOTSUP : EINVAL);
    }
    if (text.size() > prefix.size() + base64url_size(checksum_size + longest_text)) {
        core::fail_with(EMSGSIZE);
    }
    auto bytes = base64url_decode(text.substr(prefix.size()));
    if (!bytes || bytes->size() < checksum_size) {
        core::fail_with(EINVAL);
    }
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < checksum_size; ++i) {
        sum = (sum << 8U) | (*bytes)[i];
    }
    const auto body = std::span(*bytes).subspan(checksum_size);
    apply_stream(sum, body);
    // No plain text holds a NUL, so one here was not made by text_obfuscate.
    if (checksum(body) != sum || std::ranges::find(body, 0) != body.end()) {
        core::fail_with(EBADMSG);
    }
    *std::ranges::copy(body, output).out = '\0';
}

} // namespace

size_t calculate_valid_size(const char* text) {
    return text == nullptr ? 0 : prefix.size() + base64url_size(std::strlen(text) + checksum_size) + 1;
}

int text_obfuscate(const char* text, char* output) {
    return core::c_function([&] {
        if (text == nullptr || output == nullptr) {
            core::fail_with(EINVAL);
        }
        obfuscate(text, output);
    });
}

int text_deobfuscate(const char* text, char* output) {
    return core::c_function([&] {
        if (text == nullptr || output == nullptr) {
            core::fail_with(EINVAL);
        }
        deobfuscate(text, output);
    });
}
