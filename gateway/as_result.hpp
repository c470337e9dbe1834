#pragma once

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace xpon::gateway {

/// For coroutines: an operation of Asio gives its error_code and what came of it, and throws nothing.
inline constexpr auto as_result = boost::asio::as_tuple(boost::asio::use_awaitable);

} // namespace xpon::gateway
