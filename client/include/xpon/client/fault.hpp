#pragma once

#include "xpon/core/error_payload.hpp"

namespace xpon::client {

/// Why there is no answer. A refusal is an answer, and no fault: see Answer::success.
enum class Fault {
    unreachable,  ///< nobody listens at the endpoint, or it does not let us in; nothing was asked
    closed,       ///< the service closed the connection; what was asked may have been done
    timed_out,    ///< no answer within the patience; what was asked may still be done. The connection is useless then
    no_answer,    ///< what came back is no answer of the service
    bad_endpoint, ///< an endpoint that cannot be one, such as a path that is too long
    local,        ///< this machine: memory, descriptors
};

/// The fault that an error of Client or Connection stands for; its message has the particulars.
Fault fault_of(const core::ErrorPayload& error);

} // namespace xpon::client
