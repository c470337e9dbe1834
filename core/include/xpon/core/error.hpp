#pragma once

#include <cstdint>
#include <iosfwd>
#include <string_view>

namespace xpon::core {

/// Why an operation failed. The numbers are part of the library interface and never change.
enum class Error : std::uint32_t {
    NoError = 0,
    InvalidInputArg = 1,
    CommonError = 2,
    Exception = 3,
    ErrorCApi = 4,
    NotImplemented = 5,
    Already = 6,
    InvalidState = 7,
    Empty = 8,
    Overflow = 9,
    NoAccess = 10,
    OutOfRange = 11,
};

/// The code's name; "Unknown error" for a number outside the list.
std::string_view to_string(const Error& error);
std::ostream& operator<<(std::ostream& out, const Error& error);

} // namespace xpon::core
