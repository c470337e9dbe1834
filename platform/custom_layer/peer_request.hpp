#pragma once

#include "custom_layer/answer_checks.hpp"
#include "custom_layer/c_block.hpp"
#include "ipc/ipc_handle.hpp"
#include "xpon/core/c_function.hpp"
#include "xpon/peer_side/operations.hpp"
#include "xpon/peer_side/payload.hpp"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <vector>

namespace xpon::custom_layer {

/// What a request says. It is missing when a caller gave a null pointer for it: the call fails with EINVAL then.
using Question = std::optional<std::span<const std::byte>>;

inline Question no_question() {
    return std::span<const std::byte>();
}

template <class Record>
Question question(const Record& record) {
    return std::as_bytes(std::span(&record, 1));
}

template <class Record>
Question question_at(const Record* record) {
    return record == nullptr ? std::nullopt : question(*record);
}

// The steps of a call, inside its core::c_function: they throw what makes it fail.

/// Asks the owner of the operation for its answer.
std::vector<std::byte> fetch(Ipc* ipc, peer_side::Operation operation, const Question& question);

template <class Record>
Record fetch_record(Ipc* ipc, peer_side::Operation operation, const Question& question) {
    const auto record = peer_side::parse_record<Record>(fetch(ipc, operation, question));
    if (!record || !is_sound(*record)) {
        core::fail_with(EIO);
    }
    return *record;
}

template <class Record>
Record* fetch_block(Ipc* ipc, peer_side::Operation operation, const Question& question) {
    auto block = make_block<Record>();
    *block = fetch_record<Record>(ipc, operation, question);
    return block.release();
}

// Whole calls.

/// One whose answer is nothing but that it succeeded.
int order(Ipc* ipc, peer_side::Operation operation, const Question& question);

/// One whose answer is one record.
template <class Record>
int ask_record(Ipc* ipc, peer_side::Operation operation, const Question& question, Record* out) {
    return core::c_function(out, [&] { return fetch_record<Record>(ipc, operation, question); });
}

/// One whose answer is one record in a malloc block.
template <class Record>
int ask_block(Ipc* ipc, peer_side::Operation operation, const Question& question, Record** out) {
    return core::c_function(out, [&] { return fetch_block<Record>(ipc, operation, question); });
}

/// One whose answer is a list: a malloc block with a Response, `count` and `entries`, and the records behind it.
template <class Entry, class Response>
int ask_list(Ipc* ipc, peer_side::Operation operation, const Question& question, Response** out) {
    static_assert(sizeof(Response) % alignof(Entry) == 0);
    return core::c_function(out, [&] {
        const auto payload = fetch(ipc, operation, question);
        const auto bytes = peer_side::parse_list(payload, sizeof(Entry));
        if (!bytes) {
            core::fail_with(EIO);
        }
        auto response = make_block<Response>(bytes->size());
        response->count = static_cast<std::uint32_t>(bytes->size() / sizeof(Entry));
        // The bytes that follow become records by being copied there.
        response->entries = reinterpret_cast<Entry*>(response.get() + 1);
        if (!bytes->empty()) {
            std::memcpy(response->entries, bytes->data(), bytes->size());
        }
        if (!std::ranges::all_of(std::span(response->entries, response->count),
                                 [](const auto& entry) { return is_sound(entry); })) {
            core::fail_with(EIO);
        }
        return response.release();
    });
}

} // namespace xpon::custom_layer
