#include "gateway/http/request_rules.hpp"

#include <algorithm>
#include <array>
#include <cctype>

#include <arpa/inet.h>
#include <fmt/format.h>

namespace xpon::gateway {
namespace {

/// Without the port, in lower case, an IPv6 address without its brackets (RFC 9110, 7.2).
std::string host_name(std::string_view host_header) {
    const auto end = host_header.starts_with('[') ? host_header.find(']') : host_header.find(':');
    std::string name(host_header.substr(0, end));
    std::erase(name, '[');
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name;
}

bool is_address(const std::string& name) {
    std::array<unsigned char, sizeof(in6_addr)> address{};
    return inet_pton(AF_INET, name.c_str(), address.data()) == 1 ||
           inet_pton(AF_INET6, name.c_str(), address.data()) == 1;
}

HttpResponse foreign(std::string_view message) {
    return error_response(403, "foreign_origin", message);
}

std::string_view attributes(bool is_secure) {
    return is_secure ? "; Path=/api; HttpOnly; SameSite=Strict; Secure" : "; Path=/api; HttpOnly; SameSite=Strict";
}

std::string_view trimmed(std::string_view text) {
    const auto begin = text.find_first_not_of(" \t");
    const auto end = text.find_last_not_of(" \t");
    return begin == std::string_view::npos ? std::string_view() : text.substr(begin, end - begin + 1);
}

} // namespace

bool is_known_host(std::string_view host_header, bool is_secure, const Settings& settings) {
    const auto name = host_name(host_header);
    if (!settings.host_names.empty()) {
        return std::ranges::find(settings.host_names, name) != settings.host_names.end();
    }
    return is_secure || name == "localhost" || is_address(name);
}

std::optional<HttpResponse> refuse_unknown_host(const HttpRequest& request, const Settings& settings) {
    const auto host = request.header("host");
    if (host.empty() || request.has_several("host")) {
        return error_response(400, "bad_request", "The request needs one Host header");
    }
    if (!is_known_host(host, request.is_secure, settings)) {
        return error_response(421, "unknown_host",
                              fmt::format("This server is not known as {}; see host-names in its settings", host));
    }
    return std::nullopt;
}

std::optional<HttpResponse> refuse_foreign(const HttpRequest& request) {
    const auto site = request.header("sec-fetch-site");
    if (!site.empty() && site != "same-origin" && site != "none") {
        return foreign("The request comes from a page of another site");
    }
    const auto origin = request.header("origin");
    const auto own = fmt::format("{}://{}", request.is_secure ? "https" : "http", request.header("host"));
    if (!origin.empty() && origin != own) {
        return foreign("The request comes from a page of another origin");
    }
    return std::nullopt;
}

std::optional<HttpResponse> refuse_plain_form(const HttpRequest& request) {
    if (request.header(page_header).empty()) {
        return foreign("The header X-OLT-Console is missing");
    }
    const auto type = request.header("content-type");
    if (!request.body.empty() && trimmed(type.substr(0, type.find(';'))) != "application/json") {
        return error_response(415, "not_json", "The content type must be application/json");
    }
    return std::nullopt;
}

std::string_view cookie(const HttpRequest& request, std::string_view name) {
    for (auto rest = request.header("cookie"); !rest.empty();) {
        const auto end = std::min(rest.find(';'), rest.size());
        const auto pair = trimmed(rest.substr(0, end));
        const auto equals = pair.find('=');
        if (equals != std::string_view::npos && pair.substr(0, equals) == name) {
            return pair.substr(equals + 1);
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return {};
}

std::string cookie_name(const Settings& settings, bool is_secure) {
    return fmt::format("{}olt_console_{}", is_secure ? "__Secure-" : "", settings.port);
}

std::string session_cookie(std::string_view name, std::string_view value, bool is_secure) {
    return fmt::format("{}={}{}", name, value, attributes(is_secure));
}

std::string no_session_cookie(std::string_view name, bool is_secure) {
    return fmt::format("{}={}; Max-Age=0", name, attributes(is_secure));
}

Headers security_headers(bool is_secure) {
    Headers headers{
        {"Content-Security-Policy", "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
                                    "font-src 'self'; connect-src 'self'; manifest-src 'self'; form-action 'self'; "
                                    "base-uri 'none'; frame-ancestors 'none'"},
        {"X-Content-Type-Options", "nosniff"},
        {"X-Frame-Options", "DENY"},
        {"Referrer-Policy", "no-referrer"},
        {"Cross-Origin-Opener-Policy", "same-origin"},
        {"Cross-Origin-Resource-Policy", "same-origin"},
        {"Permissions-Policy", "camera=(), geolocation=(), microphone=(), payment=(), usb=()"},
    };
    if (is_secure) {
        headers.emplace_back("Strict-Transport-Security", "max-age=31536000");
    }
    return headers;
}

} // namespace xpon::gateway
