#pragma once

#include "api_service/core_names.hpp"
#include "xpon/core/unique_fd.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <queue>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace xpon::api_service {

/// A client's connection. A frame is the bytes of one JSON text and a NUL byte behind it.
class IClientSocket {
public:
    IClientSocket() = default;
    IClientSocket(const IClientSocket&) = delete;
    IClientSocket& operator=(const IClientSocket&) = delete;
    virtual ~IClientSocket() = default;

    /// How many complete frames wait.
    [[nodiscard]] virtual std::int64_t get_frames_left() const = 0;
    /// Takes the oldest frame, without its NUL. There must be one.
    virtual Result<std::string> get_frame() = 0;
    /// Sends `payload` and a NUL. A payload that does not fit the send buffer is abandoned half-way, with an error that
    /// tells how much was sent. After that nothing can be sent, and the connection is shut down.
    virtual Result<void> send_frame(std::string_view payload) = 0;
    [[nodiscard]] virtual int get_fd() const = 0;
    /// Receives once, without waiting. An error means that the connection is of no more use; its code is Overflow when
    /// too much waits to be served.
    virtual Result<void> read_data() = 0;

    /// Whether the peer has taken the answers given so far; until then it is to be read no further.
    [[nodiscard]] virtual bool takes_requests() {
        return true;
    }
    /// Ends the connection in both directions and drops what waits. The descriptor is closed with the object.
    virtual void shut_down() {}
    [[nodiscard]] virtual bool is_shut_down() const {
        return false;
    }
    /// How long it took to serve; zero before the first one.
    [[nodiscard]] std::chrono::steady_clock::duration last_request_took() const {
        return last_request_took_;
    }
    void set_last_request_took(std::chrono::steady_clock::duration took) {
        last_request_took_ = took;
    }
    /// Memory that received bytes take, whether their frames are complete or not.
    [[nodiscard]] virtual std::size_t get_bytes_waiting() const {
        return 0;
    }

protected:
    virtual ssize_t do_send(const void* data, std::size_t size) = 0;
    virtual ssize_t do_recv(void* data, std::size_t size) = 0;

private:
    std::chrono::steady_clock::duration last_request_took_{};
};

/// The first frame may be the beginning of an HTTP request: any web page can have a browser send one, with commands in
/// its body. It is answered like every text that is no request, then the connection ends; what is behind it is dropped.
/// Requests hold passwords: what was received is overwritten before its memory is freed.
class ClientSocket : public IClientSocket {
public:
    /// Takes ownership of a connected, non-blocking socket.
    explicit ClientSocket(core::UniqueFd fd);
    ClientSocket(const ClientSocket&) = delete;
    ClientSocket& operator=(const ClientSocket&) = delete;
    ~ClientSocket() override;

    [[nodiscard]] std::int64_t get_frames_left() const override;
    Result<std::string> get_frame() override;
    Result<void> send_frame(std::string_view payload) override;
    [[nodiscard]] int get_fd() const override;
    Result<void> read_data() override;
    [[nodiscard]] bool takes_requests() override;
    void shut_down() override;
    [[nodiscard]] bool is_shut_down() const override;
    [[nodiscard]] std::size_t get_bytes_waiting() const override;

    /// Memory that complete frames may take behind the oldest one. A single frame may be of any size.
    static constexpr std::size_t waiting_frames_budget = 4 * 1024 * 1024; // bytes

    /// Bytes received at once at most, so that one busy client cannot hold the loop.
    static constexpr std::size_t get_buffer_size() {
        return 4096;
    }

protected:
    ssize_t do_send(const void* data, std::size_t size) override;
    ssize_t do_recv(void* data, std::size_t size) override;

private:
    void cut_frames(std::string_view received);
    void drop_received();
    /// How many bytes of `payload` and its NUL went out.
    std::size_t send_in_one_piece(std::string_view payload);

    core::UniqueFd fd_;
    std::string partial_; ///< received since the last NUL
    std::queue<std::string> frames_;
    std::size_t frames_bytes_ = 0; ///< memory that frames_ takes
    std::size_t answered_ = 0;     ///< bytes, since the peer was seen to have taken all
    /// Of the answer that is being sent.
    enum class Nul : std::uint8_t {
        none,
        follows,  ///< what is sent now is the text in front of it
        has_left, ///< with the text
    };
    Nul nul_ = Nul::none;
    bool is_shut_down_ = false;
    bool has_had_a_frame_ = false;
    bool speaks_http_ = false;
};

} // namespace xpon::api_service
