#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

// The two forms of payloads between peers of one device: a record as it lies in memory, or a list of such records
// behind a header. Both sides are of one release and one machine, so layouts agree; sizes are checked all the same.

namespace xpon::peer_side {

/// In front of a list.
struct ListHeader {
    std::uint32_t count;
    std::uint32_t entry_size; ///< bytes of one record
};

template <class Record>
std::vector<std::byte> record_payload(const Record& record) {
    static_assert(std::is_trivially_copyable_v<Record>);
    const auto bytes = std::as_bytes(std::span(&record, 1));
    return {bytes.begin(), bytes.end()};
}

/// Empty when the payload has another size than the record.
template <class Record>
std::optional<Record> parse_record(std::span<const std::byte> payload) {
    static_assert(std::is_trivially_copyable_v<Record>);
    if (payload.size() != sizeof(Record)) {
        return std::nullopt;
    }
    Record record;
    std::memcpy(&record, payload.data(), sizeof record);
    return record;
}

template <class Record>
std::vector<std::byte> list_payload(std::span<const Record> records) {
    static_assert(std::is_trivially_copyable_v<Record>);
    const ListHeader header{static_cast<std::uint32_t>(records.size()), sizeof(Record)};
    auto payload = record_payload(header);
    const auto bytes = std::as_bytes(records);
    payload.insert(payload.end(), bytes.begin(), bytes.end());
    return payload;
}

/// A payload behind a record.
template <class Record>
std::vector<std::byte> headed_payload(const Record& header, std::span<const std::byte> payload) {
    auto headed = record_payload(header);
    headed.insert(headed.end(), payload.begin(), payload.end());
    return headed;
}

/// The bytes of a list's records. Empty when the payload is no list of records of this size.
inline std::optional<std::span<const std::byte>> parse_list(std::span<const std::byte> payload,
                                                            std::size_t entry_size) {
    if (payload.size() < sizeof(ListHeader)) {
        return std::nullopt;
    }
    const auto header = parse_record<ListHeader>(payload.first(sizeof(ListHeader)));
    const auto entries = payload.subspan(sizeof(ListHeader));
    const bool fits = header->entry_size == entry_size && entries.size() / entry_size == header->count &&
                      entries.size() % entry_size == 0;
    return fits ? std::optional(entries) : std::nullopt;
}

} // namespace xpon::peer_side
