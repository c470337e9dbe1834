#include "xpon/client/frame.hpp"

#include <utility>

namespace xpon::client {

std::string make_frame(std::string_view text) {
    std::string frame;
    frame.reserve(text.size() + 1);
    frame += text;
    frame.push_back('\0');
    return frame;
}

std::optional<std::string> FrameReader::next() {
    const auto end = received_.find('\0', searched_);
    if (end == std::string::npos) {
        searched_ = received_.size();
        return std::nullopt;
    }
    auto rest = received_.substr(end + 1);
    received_.resize(end);
    searched_ = 0;
    return std::exchange(received_, std::move(rest));
}

} // namespace xpon::client
