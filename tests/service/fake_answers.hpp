#pragma once

#include "tests/service/fake_device.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <span>

// How the calls of the custom layer give what stands in the fake device.

namespace xpon::test {

inline int answer(auto&& give) {
    auto& device = fake_device();
    if (++device.calls == device.failing_call) {
        errno = EIO;
        return -1;
    }
    return give(device);
}

template <class Record>
int give_copy(const std::optional<Record>& record, Record** out) {
    *out = nullptr;
    if (record) {
        *out = static_cast<Record*>(std::malloc(sizeof(Record)));
        std::memcpy(*out, &*record, sizeof(Record));
    }
    return 0;
}

template <class List, class Entry>
int give_list(std::span<const Entry> entries, List** out) {
    *out = static_cast<List*>(std::malloc(sizeof(List) + entries.size_bytes()));
    (*out)->count = static_cast<std::uint32_t>(entries.size());
    (*out)->entries = fake_device().has_entries ? reinterpret_cast<Entry*>(*out + 1) : nullptr;
    std::ranges::copy(entries, reinterpret_cast<Entry*>(*out + 1));
    return 0;
}

/// The ONTs of a set: " 1/1 1/2".
std::string text_of(const Bitmap_ont_range& range);

} // namespace xpon::test
