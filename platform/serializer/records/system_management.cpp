#include "serializer/field_builders.hpp"
#include "serializer/records/ip_interface_rules.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::AddressMode;
using cfgdb::AllowedSource;
using cfgdb::GSystemManagement;

constexpr Field source_fields[] = {
    ipv4(XPON_MEMBER(AllowedSource, network)),
    number(XPON_MEMBER(AllowedSource, prefix_length), 0, 32, 32),
};
constexpr Table source = make_table<AllowedSource>("AllowedSource", source_fields);

constexpr Field dns_server = ipv4(element_member<std::uint32_t>);

constexpr Field fields[] = {
    boolean(XPON_MEMBER(GSystemManagement, enabled), false),
    number(XPON_MEMBER(GSystemManagement, vlan_id), 1, 4094, 4000),
    number(XPON_MEMBER(GSystemManagement, priority), 0, 7, 6),
    enumeration(XPON_MEMBER(GSystemManagement, address_mode), address_mode_names, AddressMode::fixed),
    ipv4(XPON_MEMBER(GSystemManagement, ip_address)),
    number(XPON_MEMBER(GSystemManagement, prefix_length), 8, 30, 24),
    ipv4(XPON_MEMBER(GSystemManagement, gateway)),
    array(XPON_MEMBER(GSystemManagement, dns_servers), dns_server),
    boolean(XPON_MEMBER(GSystemManagement, web_access), true),
    boolean(XPON_MEMBER(GSystemManagement, ssh_access), true),
    boolean(XPON_MEMBER(GSystemManagement, telnet_access), false),
    boolean(XPON_MEMBER(GSystemManagement, snmp_access), true),
    list(XPON_MEMBER(GSystemManagement, allowed_sources), XPON_MEMBER(GSystemManagement, allowed_sources_count),
         source),
};

constexpr Table table =
    make_table<GSystemManagement>("GSystemManagement", fields, record_rules<GSystemManagement, check_ip_interface>);

} // namespace

template <>
const Table& record_table<GSystemManagement>() {
    return table;
}

} // namespace xpon::serializer
