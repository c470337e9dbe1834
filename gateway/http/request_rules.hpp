#pragma once

#include "gateway/http/message.hpp"
#include "gateway/settings.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace xpon::gateway {

/// The header that every POST of the page carries. Another site's page cannot set it without this server's consent,
/// which it never gives (Fetch Standard, CORS protocol).
inline constexpr std::string_view page_header = "x-olt-console";

/// Whether browsers may call this server by that name. Without names in the settings: by its addresses and "localhost",
/// and under TLS, where the certificate decides, by any. Keeps pages away that have let their own name point here.
bool is_known_host(std::string_view host_header, bool is_secure, const Settings& settings);

/// The refusal of a request for another host, or for none.
std::optional<HttpResponse> refuse_unknown_host(const HttpRequest& request, const Settings& settings);
/// The refusal of a request that no page of this server has sent, by its Origin and Sec-Fetch-Site. For what the page
/// asks: the page itself may be come to from anywhere.
std::optional<HttpResponse> refuse_foreign(const HttpRequest& request);
/// The refusal of a POST that is not JSON with the header above.
std::optional<HttpResponse> refuse_plain_form(const HttpRequest& request);

/// The value of the cookie; "" without one.
std::string_view cookie(const HttpRequest& request, std::string_view name);
/// The name differs by port, which cookies do not, and under TLS begins with the prefix that only TLS may set.
std::string cookie_name(const Settings& settings, bool is_secure);
/// A Set-Cookie value: for the session of a browser, seen by no script, sent to /api alone, by pages of this server
/// alone.
std::string session_cookie(std::string_view name, std::string_view value, bool is_secure);
/// The same, for the browser to forget it.
std::string no_session_cookie(std::string_view name, bool is_secure);

/// Every answer has them.
Headers security_headers(bool is_secure);

} // namespace xpon::gateway
