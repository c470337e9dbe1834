#include "serializer/field_builders.hpp"
#include "serializer/records/ip_interface_rules.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::AddressMode;
using cfgdb::OobPort;

constexpr const char* speed_names[] = {"auto", "10_full", "100_full", "1000_full"};

constexpr Field fields[] = {
    boolean(XPON_MEMBER(OobPort, enabled), true),
    number(XPON_MEMBER(OobPort, vlan_id), 0, 4094, 0),
    enumeration(XPON_MEMBER(OobPort, speed), speed_names, OobPort::Speed::automatic),
    enumeration(XPON_MEMBER(OobPort, address_mode), address_mode_names, AddressMode::fixed),
    ipv4(XPON_MEMBER(OobPort, ip_address), address(192, 168, 77, 10)),
    number(XPON_MEMBER(OobPort, prefix_length), 8, 30, 24),
    ipv4(XPON_MEMBER(OobPort, gateway)),
};

constexpr Table table = make_table<OobPort>("OobPort", fields, record_rules<OobPort, check_ip_interface>);

} // namespace

template <>
const Table& record_table<OobPort>() {
    return table;
}

} // namespace xpon::serializer
