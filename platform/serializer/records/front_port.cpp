#include "serializer/field_builders.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::FrontPort;

constexpr const char* speed_names[] = {"auto", "100m", "1g", "10g"};
constexpr const char* direction_names[] = {"off", "rx", "tx", "both"};
constexpr const char* multicast_router_names[] = {"auto", "always"};

constexpr Field fields[] = {
    boolean(XPON_MEMBER(FrontPort, enabled), true),
    label(text(XPON_MEMBER(FrontPort, description), Characters::text)),
    enumeration(XPON_MEMBER(FrontPort, speed), speed_names, FrontPort::Speed::automatic),
    enumeration(XPON_MEMBER(FrontPort, flow_control), direction_names, FrontPort::Direction::off),
    number(XPON_MEMBER(FrontPort, max_frame_size), 1518, 9600, 2000), // 2000: envelope frames [802.3]
    number(XPON_MEMBER(FrontPort, pvid), 0, 4094, 1),
    vlan_set(XPON_MEMBER(FrontPort, tagged_vlans), "1-4094"),
    boolean(XPON_MEMBER(FrontPort, ingress_filter), true),
    number(XPON_MEMBER(FrontPort, broadcast_limit_pps), 0, 14880952, 0), // 10 Gbit/s of shortest frames
    enumeration(XPON_MEMBER(FrontPort, multicast_router), multicast_router_names,
                FrontPort::MulticastRouter::automatic),
    enumeration(XPON_MEMBER(FrontPort, lldp), direction_names, FrontPort::Direction::both),
};

constexpr Table table = make_table<FrontPort>("FrontPort", fields);

} // namespace

template <>
const Table& record_table<FrontPort>() {
    return table;
}

} // namespace xpon::serializer
