#include "cfgdb/checksum.hpp"

#include "cfgdb/keys.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <span>

namespace xpon::cfgdb {
namespace {

using Checksum = std::uint32_t;

constexpr std::size_t block_size = 8;

/// What a byte does to the remainder, by the number of bytes behind it.
constexpr auto shares = [] {
    constexpr Checksum polynomial = 0xEDB88320; // that of IEEE 802.3, lowest bit first
    std::array<std::array<Checksum, 256>, block_size> tables{};
    for (Checksum byte = 0; byte < tables[0].size(); ++byte) {
        auto share = byte;
        for (int bit = 0; bit < 8; ++bit) {
            share = share >> 1U ^ ((share & 1U) != 0 ? polynomial : 0);
        }
        tables[0][byte] = share;
    }
    for (std::size_t behind = 1; behind < block_size; ++behind) {
        for (std::size_t byte = 0; byte < tables[0].size(); ++byte) {
            const auto share = tables[behind - 1][byte];
            tables[behind][byte] = share >> 8U ^ tables[0][share & 0xFFU];
        }
    }
    return tables;
}();

/// Every record that is read goes through this. Boost's takes a byte at a time, six times as long, which was most of
/// what reading a record took.
class Crc32 {
public:
    void add(Bytes bytes) {
        static_assert(std::endian::native == std::endian::little);
        for (; bytes.size() >= block_size; bytes = bytes.subspan(block_size)) {
            std::uint64_t block = 0;
            std::memcpy(&block, bytes.data(), block_size);
            block ^= remainder_;
            remainder_ = share<7>(block) ^ share<6>(block) ^ share<5>(block) ^ share<4>(block) ^ share<3>(block) ^
                         share<2>(block) ^ share<1>(block) ^ share<0>(block);
        }
        for (const auto byte : bytes) {
            remainder_ = remainder_ >> 8U ^ shares[0][(remainder_ ^ static_cast<Checksum>(byte)) & 0xFFU];
        }
    }
    [[nodiscard]] Checksum value() const {
        return ~remainder_;
    }

private:
    template <unsigned behind>
    static Checksum share(std::uint64_t block) {
        return shares[behind][block >> 8U * (block_size - 1 - behind) & 0xFFU];
    }

    Checksum remainder_ = ~Checksum{0};
};

Checksum checksum_of(Bytes key, Bytes value) {
    Crc32 crc;
    crc.add(key);
    crc.add(value);
    return crc.value();
}

} // namespace

std::uint32_t checksum(std::string_view text) {
    return checksum_of({}, std::as_bytes(std::span(text)));
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
