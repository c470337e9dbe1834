// Bytes as they come from a client: framing, parsing and the answer to an echo of what was understood.

#include "api_service/protocol/request_parser.hpp"
#include "fuzz/input_client.hpp"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using namespace xpon;

void check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto logger = std::make_shared<fuzz::NoLogger>();
    const api_service::RequestParser parser(logger);
    fuzz::InputClient client({reinterpret_cast<const char*>(data), size});
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
