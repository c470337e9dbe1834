#include "cfgdb/checksum.hpp"

#include "cfgdb/keys.hpp"

#include <cstring>

#include <boost/crc.hpp>

namespace xpon::cfgdb {
namespace {

using Checksum = std::uint32_t;

Checksum checksum_of(Bytes key, Bytes value) {
    boost::crc_32_type crc;
    crc.process_bytes(key.data(), key.size());
    crc.process_bytes(value.data(), value.size());
    return crc.checksum();
}

} // namespace

std::uint32_t checksum(std::string_view text) {
    boost::crc_32_type crc;
    crc.process_bytes(text.data(), text.size());
    return crc.checksum();
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
