#include "serializer/field_builders.hpp"

#include <span>

namespace xpon::serializer {
namespace {

using cfgdb::NtpConfig;
using cfgdb::NtpServer;

constexpr Field server_fields[] = {
    text(XPON_MEMBER(NtpServer, address), Characters::host, 1),
    number(XPON_MEMBER(NtpServer, version), 3, 4, 4),
    boolean(XPON_MEMBER(NtpServer, prefer), false),
};
constexpr Table server = make_table<NtpServer>("NtpServer", server_fields);

constexpr const char* interface_names[] = {"any", "inband", "oob"};

constexpr Field fields[] = {
    boolean(XPON_MEMBER(NtpConfig, enabled), false),
    list(XPON_MEMBER(NtpConfig, servers), XPON_MEMBER(NtpConfig, servers_count), server),
    number(XPON_MEMBER(NtpConfig, min_poll), 4, 17, 6),
    number(XPON_MEMBER(NtpConfig, max_poll), 4, 17, 10),
    enumeration(XPON_MEMBER(NtpConfig, interface), interface_names, NtpConfig::any),
    number(XPON_MEMBER(NtpConfig, utc_offset_min), -720, 840, 0, 15),
};

void rules(const NtpConfig& config, Contradictions& contradictions) {
    const std::span servers(config.servers, config.servers_count);
    if (config.enabled != 0 && servers.empty()) {
        contradictions.add("servers", "enabled needs a server");
    }
    if (config.min_poll > config.max_poll) {
        contradictions.add("max_poll", "min_poll is greater than max_poll");
    }
    bool has_preferred = false;
    for (std::size_t i = 0; i < servers.size(); ++i) {
        if (has_equal_before(servers, i, &NtpServer::address)) {
            contradictions.add_in("servers", i, "address", "the address is repeated");
        }
        if (servers[i].prefer != 0 && has_preferred) {
            contradictions.add_in("servers", i, "prefer", "another server is preferred");
        }
        has_preferred = has_preferred || servers[i].prefer != 0;
    }
}

constexpr Table table = make_table<NtpConfig>("NtpConfig", fields, record_rules<NtpConfig, rules>);

} // namespace

template <>
const Table& record_table<NtpConfig>() {
    return table;
}

} // namespace xpon::serializer
