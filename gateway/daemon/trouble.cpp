#include "gateway/daemon/trouble.hpp"

#include <array>

namespace xpon::gateway {
namespace {

// By Trouble.
constexpr std::array facts{
    TroubleFacts{502, "service_unreachable",
                 "The OLT's service is not running. Nothing was sent; the console keeps trying to reach it."},
    TroubleFacts{401, "no_session", "The OLT's service has been started again. Log in again."},
    TroubleFacts{504, "service_busy", "The OLT's service was busy with other requests. This one was not sent."},
    TroubleFacts{
        504, "service_timeout",
        "The OLT's service has not answered in time. It may still carry out the request: look before repeating it."},
    TroubleFacts{
        502, "service_lost",
        "The connection to the OLT's service broke before the answer was whole. The request may have been carried "
        "out: look before repeating it."},
};

} // namespace

const TroubleFacts& facts_of(Trouble trouble) {
    return facts.at(static_cast<std::size_t>(trouble));
}

} // namespace xpon::gateway
