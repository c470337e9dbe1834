#pragma once

#include "gateway/daemon/daemon_link.hpp"

#include <string_view>

namespace xpon::gateway {

/// What pages are told when the daemon did not answer.
struct TroubleFacts {
    unsigned status; ///< of HTTP
    std::string_view code;
    std::string_view message; ///< needs no escapes in JSON
};

const TroubleFacts& facts_of(Trouble trouble);

} // namespace xpon::gateway
