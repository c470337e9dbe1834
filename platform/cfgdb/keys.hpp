#pragma once

#include "cfgdb/element.hpp"
#include "cfgdb/transaction.hpp"

#include <algorithm>
#include <array>
#include <compare>
#include <concepts>
#include <cstring>
#include <optional>
#include <string_view>

namespace xpon::cfgdb {

/// What an entry belongs to: the first byte of its key.
enum class Store : std::uint8_t { meta, users, running, candidate, index, commits };

/// A key, built from its parts. Numbers are written most significant byte first, so that keys sort as numbers do.
class Key {
public:
    explicit Key(Store store) {
        add(static_cast<std::uint8_t>(store));
    }

    template <std::unsigned_integral Number>
    Key& add(Number number) {
        for (std::size_t i = sizeof(Number); i-- > 0;) {
            bytes_[size_++] = static_cast<std::byte>(number >> (8 * i));
        }
        return *this;
    }

    /// A text of up to 32 bytes, as the last part.
    Key& add(std::string_view text);

    /// As LMDB sorts keys.
    friend bool operator==(const Key& left, const Key& right) {
        return std::ranges::equal(Bytes(left), Bytes(right));
    }
    friend std::strong_ordering operator<=>(const Key& left, const Key& right) {
        return std::lexicographical_compare_three_way(left.bytes_.begin(), left.bytes_.begin() + left.size_,
                                                      right.bytes_.begin(), right.bytes_.begin() + right.size_);
    }

    operator Bytes() const { // NOLINT(google-explicit-constructor): a key is its bytes
        return {bytes_.data(), size_};
    }

private:
    std::array<std::byte, 40> bytes_;
    std::uint8_t size_ = 0;
};

/// Takes the parts of a key apart again, from the front.
class KeyReader {
public:
    explicit KeyReader(Bytes key) : rest_(key) {}

    template <std::unsigned_integral Number>
    Number take() {
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < sizeof(Number); ++i) {
            number = (number << 8U) | std::to_integer<std::uint64_t>(rest_[i]);
        }
        rest_ = rest_.subspan(sizeof(Number));
        return static_cast<Number>(number);
    }

private:
    Bytes rest_;
};

Key record_key(Store store, const RecordId& id);
/// The reverse. Empty for a key of an element that this program does not know.
std::optional<RecordId> record_of(Bytes key);

} // namespace xpon::cfgdb
