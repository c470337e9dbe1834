#include "serializer/path.hpp"

namespace xpon::serializer {

std::string Path::text() const {
    std::string result = parent_ == nullptr ? "" : parent_->text() + ".";
    return result += is_position_ ? std::to_string(position_) : std::string(key_);
}

} // namespace xpon::serializer
