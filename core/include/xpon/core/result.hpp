#pragma once

#include "xpon/core/error_payload.hpp"

#include <cstdlib>
#include <utility>

#include <boost/outcome/basic_result.hpp>
#include <boost/outcome/try.hpp>

namespace xpon::core {

/// Reading the wrong side of a Result is a programming error. It ends the process in every kind of build: going on
/// with a value that was never made would be worse.
struct XponPolicy : boost::outcome_v2::policy::base {
    template <class Impl>
    static constexpr void wide_value_check(Impl&& self) {
        if (!base::_has_value(std::forward<Impl>(self))) {
            std::abort();
        }
    }
    template <class Impl>
    static constexpr void wide_error_check(Impl&& self) {
        if (!base::_has_error(std::forward<Impl>(self))) {
            std::abort();
        }
    }
    template <class Impl>
    static constexpr void narrow_value_check(Impl&& self) {
        wide_value_check(std::forward<Impl>(self));
    }
    template <class Impl>
    static constexpr void narrow_error_check(Impl&& self) {
        wide_error_check(std::forward<Impl>(self));
    }
};

/// What every fallible operation returns: a value, or the ErrorPayload that says why there is none.
/// Steps are chained with BOOST_OUTCOME_TRY.
template <class T>
using Result = boost::outcome_v2::basic_result<T, ErrorPayload, XponPolicy>;

/// The value of a `Result<void>` that succeeded.
inline auto success() {
    return boost::outcome_v2::success();
}

} // namespace xpon::core
