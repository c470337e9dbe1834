#include "xpon/core/error.hpp"

#include <array>
#include <ostream>

namespace xpon::core {
namespace {

using namespace std::string_view_literals;

// Indexed by the numeric value of Error.
constexpr std::array names{
    "No error"sv, "InvalidInputArg"sv, "CommonError"sv, "Exception"sv, "ErrorCApi"sv, "NotImplemented"sv,
    "Already"sv,  "InvalidState"sv,    "Empty"sv,       "Overflow"sv,  "NoAccess"sv,  "OutOfRange"sv,
};

} // namespace

std::string_view to_string(const Error& error) {
    const auto value = static_cast<std::size_t>(error);
    return value < names.size() ? names.at(value) : "Unknown error"sv;
}

std::ostream& operator<<(std::ostream& out, const Error& error) {
    return out << to_string(error);
}

} // namespace xpon::core
