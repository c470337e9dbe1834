#pragma once

#include "custom_layer/answer_checks.hpp"
#include "ipc/ipc_handle.hpp"
#include "xpon/peer_side/payload.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>

namespace xpon::custom_layer {

/// Sets errno and is -1.
int fail(int cause);

/// Asks the owner of the operation. True when its answer is in `payload`; otherwise errno says why not.
bool ask(Ipc* ipc, ipc::Operation operation, std::span<const std::byte> question, std::vector<std::byte>& payload);

inline std::span<const std::byte> no_question() {
    return {};
}

template <class Question>
std::span<const std::byte> question(const Question& question) {
    return std::as_bytes(std::span(&question, 1));
}

/// A call whose answer is nothing but that it succeeded.
int order(Ipc* ipc, ipc::Operation operation, std::span<const std::byte> question);

/// A call whose answer is one record.
template <class Record>
int ask_record(Ipc* ipc, ipc::Operation operation, std::span<const std::byte> question, Record* out) {
    if (out == nullptr) {
        return fail(EINVAL);
    }
    std::memset(out, 0, sizeof *out);
    std::vector<std::byte> payload;
    if (!ask(ipc, operation, question, payload)) {
        return -1;
    }
    const auto record = ipc::parse_record<Record>(payload);
    if (!record || !is_sound(*record)) {
        return fail(EIO);
    }
    *out = *record;
    return 0;
}

/// A call whose answer is one record in a malloc block.
template <class Record>
int ask_block(Ipc* ipc, ipc::Operation operation, std::span<const std::byte> question, Record** out) {
    if (out == nullptr) {
        return fail(EINVAL);
    }
    *out = static_cast<Record*>(std::calloc(1, sizeof(Record)));
    if (*out == nullptr) {
        return fail(ENOMEM);
    }
    if (ask_record(ipc, operation, question, *out) == 0) {
        return 0;
    }
    const int cause = errno;
    std::free(*out);
    *out = nullptr;
    return fail(cause);
}

/// A call whose answer is a list: a malloc block with a Response, `count` and `entries`, and the records behind it.
template <class Entry, class Response>
int ask_list(Ipc* ipc, ipc::Operation operation, std::span<const std::byte> question, Response** out) {
    static_assert(sizeof(Response) % alignof(Entry) == 0);
    if (out == nullptr) {
        return fail(EINVAL);
    }
    *out = nullptr;
    std::vector<std::byte> payload;
    if (!ask(ipc, operation, question, payload)) {
        return -1;
    }
    const auto bytes = ipc::parse_list(payload, sizeof(Entry));
    if (!bytes) {
        return fail(EIO);
    }
    void* const block = std::malloc(sizeof(Response) + bytes->size());
    if (block == nullptr) {
        return fail(ENOMEM);
    }
    auto* const response = new (block) Response{};
    response->count = static_cast<std::uint32_t>(bytes->size() / sizeof(Entry));
    // The bytes that follow become records by being copied there.
    response->entries = reinterpret_cast<Entry*>(response + 1);
    if (!bytes->empty()) {
        std::memcpy(response->entries, bytes->data(), bytes->size());
    }
    if (!std::ranges::all_of(std::span(response->entries, response->count),
                             [](const auto& entry) { return is_sound(entry); })) {
        std::free(block);
        return fail(EIO);
    }
    *out = response;
    return 0;
}

} // namespace xpon::custom_layer
