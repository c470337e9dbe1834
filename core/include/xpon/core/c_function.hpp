#pragma once

#include <cerrno>
#include <cstring>
#include <functional>
#include <new>
#include <system_error>
#include <type_traits>
#include <utility>

namespace xpon::core {

/// Ends the c_function that runs with this errno value.
[[noreturn]] inline void fail_with(int cause) {
    throw std::system_error(cause, std::generic_category());
}

/// Runs the body of a function that C callers get. It returns what the body does, or 0 for a body that returns
/// nothing. A body that throws makes it fail, -1 with errno set: the code of a std::system_error, ENOMEM for lack of
/// memory, EIO for anything else.
template <class Body>
int c_function(Body&& body) noexcept {
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
            std::invoke(std::forward<Body>(body));
            return 0;
        } else {
            return std::invoke(std::forward<Body>(body));
        }
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
    } catch (const std::system_error& error) {
        errno = error.code().value();
    } catch (...) {
        errno = EIO;
    }
    return -1;
}

/// The same for a function that gives one value, which the body returns. After a failure `*out` is zero, padding
/// included; without `out` the function fails with EINVAL.
template <class Out, class Body>
int c_function(Out* out, Body&& body) noexcept {
    static_assert(std::is_trivially_copyable_v<Out>);
    return c_function([&] {
        if (out == nullptr) {
            fail_with(EINVAL);
        }
        std::memset(out, 0, sizeof *out);
        *out = std::invoke(std::forward<Body>(body));
    });
}

} // namespace xpon::core
