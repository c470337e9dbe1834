#pragma once

#include "api_service/core_names.hpp"

#include <cstddef>

namespace xpon::api_service {

/// The largest answer that room is made for. A full plant's is tens of megabytes.
inline constexpr std::size_t largest_answer = 32 * 1024 * 1024; // bytes

/// Lets one send() on a connected socket take `bytes`, up to `largest_answer`, for the life of the object, whatever the
/// peer does. The kernel's memory is taken only by what is really on its way. Without the right to force the size it is
/// raised only where that beats the kernel's own tuning.
class SendBufferRoom {
public:
    SendBufferRoom(int fd, std::size_t bytes);
    SendBufferRoom(const SendBufferRoom&) = delete;
    SendBufferRoom& operator=(const SendBufferRoom&) = delete;
    ~SendBufferRoom();

private:
    int fd_;
    int size_before_ = 0; ///< 0 = as it was
};

/// Bytes that were given to send() and wait for the peer to make room.
std::size_t unsent_bytes(int fd);

/// Sends to a connection of its own what nobody reads, and warns when `largest_answer` does not fit.
void try_send_buffer(ILogger& logger);

} // namespace xpon::api_service
