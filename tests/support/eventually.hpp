#pragma once

#include <chrono>

#include <poll.h>

namespace xpon::test {

/// Waits until `condition()` holds; false when it does not within `limit`. For conditions that no descriptor tells.
template <class Condition>
bool eventually(Condition&& condition, std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        poll(nullptr, 0, 2);
    }
    return true;
}

} // namespace xpon::test
