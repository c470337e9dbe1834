#pragma once

#include "api_service/core_names.hpp"
#include "xpon/core/c_status.hpp"

#include <cstdlib>
#include <memory>

namespace xpon::api_service {

struct FreeDeleter {
    void operator()(void* block) const {
        std::free(block); // NOLINT(cppcoreguidelines-no-malloc): the libraries allocate with malloc
    }
};

/// The one owner of a block that a library allocated with malloc.
template <class T>
using LibraryBuffer = std::unique_ptr<T, FreeDeleter>;

/// The record that `function` returns through a `Record**` behind the other arguments. A call that succeeds without a
/// record is an error.
template <class Record, class Function, class... Args>
Result<LibraryBuffer<Record>> fetch_buffer(ILogger& logger, Function function, Args... args) {
    Record* out = nullptr;
    const auto called = core::call_c_api(logger, function, args..., &out);
    LibraryBuffer<Record> buffer(out);
    BOOST_OUTCOME_TRY(called);
    if (buffer == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, "Object cannot be null");
    }
    return buffer;
}

/// The same for a list with `count` entries behind `entries`. A list with a count but without entries is an error.
template <class List, class Function, class... Args>
Result<LibraryBuffer<List>> fetch_list(ILogger& logger, Function function, Args... args) {
    BOOST_OUTCOME_TRY(auto list, fetch_buffer<List>(logger, function, args...));
    if (list->count > 0 && list->entries == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, "Object cannot be null");
    }
    return list;
}

} // namespace xpon::api_service
