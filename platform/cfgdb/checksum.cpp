#include "cfgdb/checksum.hpp"

#include "cfgdb/keys.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>

#include <libdeflate.h>

namespace xpon::cfgdb {
namespace {

using Checksum = std::uint32_t;

/// Goes on from the checksum of what stands before the bytes, 0 for nothing.
Checksum checksum_behind(Checksum before, Bytes bytes) {
    // The library takes a null pointer for the beginning.
    return bytes.empty() ? before : libdeflate_crc32(before, bytes.data(), bytes.size());
}

Checksum checksum_of(Bytes key, Bytes value) {
    return checksum_behind(checksum_behind(0, key), value);
}

} // namespace

std::uint32_t checksum(std::string_view text) {
    return checksum_behind(0, std::as_bytes(std::span(text)));
}

std::vector<std::byte> seal(Bytes key, Bytes value) {
    std::vector<std::byte> sealed(value.size() + sizeof(Checksum));
    std::ranges::copy(value, sealed.begin());
    const auto sum = checksum_of(key, value);
    std::memcpy(sealed.data() + value.size(), &sum, sizeof(sum));
    return sealed;
}

std::optional<Bytes> unseal(Bytes key, Bytes sealed) {
    if (sealed.size() < sizeof(Checksum)) {
        return {};
    }
    const auto value = sealed.first(sealed.size() - sizeof(Checksum));
    const auto sum = checksum_of(key, value);
    const bool is_right = std::memcmp(sealed.data() + value.size(), &sum, sizeof(sum)) == 0;
    return is_right ? std::optional(value) : std::nullopt;
}

std::uint64_t share_of(Bytes sealed) {
    Checksum sum = 0;
    if (sealed.size() >= sizeof(sum)) {
        std::memcpy(&sum, sealed.last(sizeof(sum)).data(), sizeof(sum));
    }
    return sum;
}

Bytes seal_key() {
    static const auto key = Key(Store::meta).add("seal");
    return key;
}

std::optional<Seal> read_seal(Bytes value) {
    Seal result{};
    if (value.size() != sizeof(result)) {
        return {};
    }
    std::memcpy(&result, value.data(), sizeof(result));
    return result;
}

} // namespace xpon::cfgdb
