#pragma once

#include <cerrno>
#include <new>
#include <system_error>

namespace xpon {

/// Runs the body of a C function: it returns 0, or fails with the errno value of a std::system_error, with ENOMEM
/// for lack of memory and EIO for anything else that is thrown.
template <class Body>
int c_call(Body&& body) noexcept {
    try {
        body();
        return 0;
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
    } catch (const std::system_error& error) {
        errno = error.code().value();
    } catch (...) {
        errno = EIO;
    }
    return -1;
}

/// Ends a c_call with this errno value.
[[noreturn]] inline void fail_with(int cause) {
    throw std::system_error(cause, std::generic_category());
}

} // namespace xpon
