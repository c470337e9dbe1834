#pragma once

#include "api_service/client_socket.hpp"

#include <chrono>
#include <cstddef>
#include <memory>
#include <vector>

namespace xpon::api_service {

/// Whose requests wait, one entry a frame, in the order in which they are served: first come, first served. But a
/// client whose last request took long will mostly ask for the same again; it waits as if it had come later by twice
/// that time. So what takes a moment is answered between two long answers, and still nobody waits for ever.
class RequestQueue {
public:
    using Clock = std::chrono::steady_clock;

    /// A request that takes longer is a long one.
    static constexpr std::chrono::milliseconds long_request{2};

    /// Adds all of them, or none when there is no memory.
    void add(const std::vector<std::shared_ptr<IClientSocket>>& clients, Clock::time_point now);
    [[nodiscard]] bool empty() const {
        return next_ == entries_.size();
    }
    /// Takes the first one. There must be one.
    std::shared_ptr<IClientSocket> take();

private:
    struct Entry {
        std::shared_ptr<IClientSocket> client;
        Clock::time_point due;
    };
    std::vector<Entry> entries_; ///< by `due`
    std::size_t next_ = 0;       ///< of them; those before it have been taken
};

} // namespace xpon::api_service
