#include "gateway/sessions/session_id.hpp"

#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>

#include <sys/random.h>

namespace xpon::gateway {
namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

} // namespace

std::string make_session_id() {
    std::array<std::uint8_t, 32> random{};
    // Up to 256 bytes come whole, once the kernel has been seeded; it waits until then.
    if (getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) {
        throw std::system_error(errno, std::generic_category(), "getrandom");
    }
    std::string text;
    unsigned bits = 0;
    unsigned held = 0;
    for (const auto byte : random) {
        bits = bits << 8U | byte;
        for (held += 8; held >= 6; held -= 6) {
            text += alphabet[bits >> (held - 6) & 63U];
        }
    }
    text += alphabet[bits << (6 - held) & 63U];
    return text;
}

} // namespace xpon::gateway
