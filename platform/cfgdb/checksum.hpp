#pragma once

#include "cfgdb/transaction.hpp"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace xpon::cfgdb {

/// CRC-32 [ITU-T V.42] of a text.
std::uint32_t checksum(std::string_view text);

// Every value of the database ends with the checksum of its key and itself, so that a value that was changed or that
// came under another key is noticed.

/// The value as it is stored.
std::vector<std::byte> seal(Bytes key, Bytes value);
/// The reverse; empty when the checksum is wrong.
std::optional<Bytes> unseal(Bytes key, Bytes sealed);
/// What the entry adds to the sum over all entries: its checksum.
std::uint64_t share_of(Bytes sealed);

/// Kept in an entry of its own, outside of the sum, and written with each transaction: an entry that is lost, or a head
/// of an older transaction, is noticed by it.
struct Seal {
    std::uint64_t sum;         ///< of the shares of all other entries, modulo 2^64
    std::uint64_t transaction; ///< LMDB's number of the transaction that wrote it
};

/// The key of the seal's entry.
Bytes seal_key();
std::optional<Seal> read_seal(Bytes value);

} // namespace xpon::cfgdb
