#include "serializer/field_builders.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::PortChannel;

constexpr const char* mode_names[] = {"static", "lacp_active", "lacp_passive"};
constexpr const char* lacp_timeout_names[] = {"long", "short"};
constexpr const char* hash_names[] = {"src_dst_mac", "src_dst_ip", "src_dst_ip_port"};

constexpr Field fields[] = {
    boolean(XPON_MEMBER(PortChannel, enabled), false),
    label(text(XPON_MEMBER(PortChannel, description), Characters::text)),
    port_set(XPON_MEMBER(PortChannel, members), 16),
    enumeration(XPON_MEMBER(PortChannel, mode), mode_names, PortChannel::Mode::fixed),
    enumeration(XPON_MEMBER(PortChannel, lacp_timeout), lacp_timeout_names, PortChannel::LacpTimeout::slow),
    enumeration(XPON_MEMBER(PortChannel, hash), hash_names, PortChannel::Hash::src_dst_mac),
    number(XPON_MEMBER(PortChannel, min_links), 1, 8, 1),
};

constexpr Table table = make_table<PortChannel>("PortChannel", fields);

} // namespace

template <>
const Table& record_table<PortChannel>() {
    return table;
}

} // namespace xpon::serializer
