// Bytes as they come from a client: framing, parsing and the answer to an echo of what was understood.

#include "api_service/client_socket.hpp"
#include "api_service/protocol/request_parser.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

using namespace xpon;

class NoLogger : public core::ILogger {
public:
    [[nodiscard]] bool is_enabled(core::LogLevel) const override {
        return true; // so that every text is formatted
    }
    void write(core::LogLevel, std::string_view, const std::source_location&) override {}
};

/// Hands out the input in pieces of changing size.
class InputClient : public api_service::ClientSocket {
public:
    explicit InputClient(std::string_view input) : ClientSocket(core::UniqueFd()), input_(input) {}

protected:
    ssize_t do_recv(void* data, std::size_t size) override {
        piece_ = piece_ * 7 % 4099 + 1;
        const auto count = std::min({size, input_.size(), piece_});
        std::memcpy(data, input_.data(), count);
        input_.remove_prefix(count);
        return static_cast<ssize_t>(count);
    }

private:
    std::string_view input_;
    std::size_t piece_ = 1;
};

void check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto logger = std::make_shared<NoLogger>();
    const api_service::RequestParser parser(logger);
    InputClient client({reinterpret_cast<const char*>(data), size});
    while (client.read_data()) {
        while (client.get_frames_left() > 0) {
            const auto frame = client.get_frame();
            check(!frame.value().empty() && frame.value().find('\0') == std::string::npos);
            const auto request = parser.parse_request(frame.value());
            if (request) {
                auto response = api_service::Response::make_success_response(nullptr, logger);
                response.payload = request.value().data;
                const auto answer = parser.make_response(response);
                check(answer && answer.value().find('\0') == std::string::npos);
            }
        }
    }
    return 0;
}
