#include "xpon/client/fault.hpp"

namespace xpon::client {

Fault fault_of(const core::ErrorPayload& error) {
    switch (error.code) {
    case core::Error::NoAccess:
        return Fault::unreachable;
    case core::Error::Empty:
        return Fault::closed;
    case core::Error::Overflow:
        return Fault::timed_out;
    case core::Error::InvalidState:
        return Fault::no_answer;
    case core::Error::InvalidInputArg:
        return Fault::bad_endpoint;
    default:
        return Fault::local;
    }
}

} // namespace xpon::client
