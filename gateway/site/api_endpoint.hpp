#pragma once

#include "gateway/http/message.hpp"
#include "gateway/site/services.hpp"

namespace xpon::gateway {

/// A request that the page sends by itself carries this header: it does not keep the session alive.
inline constexpr std::string_view background_header = "x-olt-background";

/// POST /api: one request to the daemon in the name of the caller's session, whatever session it names itself.
/// `Prefer: wait=SECONDS` (RFC 7240, 4.3) asks for another patience than that of the settings.
class ApiEndpoint {
public:
    explicit ApiEndpoint(const Services& services) : services_(services) {}

    void ask(const HttpRequest& request, const Respond& respond);

private:
    const Services services_;
};

} // namespace xpon::gateway
