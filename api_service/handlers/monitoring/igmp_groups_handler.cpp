#include "api_service/handlers/monitoring/igmp_groups_handler.hpp"

#include "api_service/handlers/monitoring/wire_texts.hpp"
#include "api_service/handlers/record_fields.hpp"
#include "api_service/peers.hpp"
#include "xpon/ranges/vlan_range.h"

#include <vector>

namespace xpon::api_service {
namespace {

constexpr const char* filter_modes[] = {"INCLUDE", "EXCLUDE"};

const char* filter_mode_text(Igmp_filter_mode mode) {
    return filter_modes[mode == igmp_include ? 0 : 1];
}

constexpr JsonField<Igmp_group> group_fields[] = {
    {"group_address",
     {[](JsonWriter& to, const Igmp_group& group) { return write_value(to, ipv4_text(group.address)); },
      &shapes::ipv4}},
    {"is_in_deletion_queue", flag<&Igmp_group::is_in_deletion_queue>, "1 = its last member has left"},
    {"filter_mode",
     {[](JsonWriter& to, const Igmp_group& group) { return write_value(to, filter_mode_text(group.filter_mode)); },
      &text_among<filter_modes>}},
    {"vlan", member<&Igmp_group::vlan>},
};

constexpr JsonField<Igmp_source> source_fields[] = {
    {"ip_address",
     {[](JsonWriter& to, const Igmp_source& source) { return write_value(to, ipv4_text(source.ip)); }, &shapes::ipv4}},
    {"filter_mode",
     {[](JsonWriter& to, const Igmp_source& source) { return write_value(to, filter_mode_text(source.filter_mode)); },
      &text_among<filter_modes>}},
};

constexpr JsonField<Igmp_member_port> member_port_fields[] = {
    {"port",
     {[](JsonWriter& to, const Igmp_member_port& port) {
          return write_value(to, switch_port_text(port.kind, port.unit, port.number));
      },
      &switch_port_shape}},
    {"is_static", flag<&Igmp_member_port::is_static>},
    {"expires_sec", member<&Igmp_member_port::expires_sec>, "s; 0 for a static member"},
};

constexpr Member group_lists[] = {
    {"ip_sources", &array_of<object_of<source_fields>>},
    {"ports", &array_of<object_of<member_port_fields>>},
};
constexpr Shape group_shape = named("IgmpGroup", object_of<group_fields, group_lists>);

constexpr Shape vlan_shape = integer_shape<std::uint16_t>(1, 4094);
constexpr Member answer_members[] = {
    {"vlans", &array_of<vlan_shape>, "those in which the OLT looks into IGMP"},
    {"igmp_groups_count", &shape_of<std::uint32_t>},
    {"igmp_groups", &array_of<group_shape>},
};

Result<void> fill_group(JsonWriter& object, const Igmp_group& group) {
    BOOST_OUTCOME_TRY(write_fields(object, group, group_fields));
    BOOST_OUTCOME_TRY(const auto sources, bounded_items(group.sources, group.source_count, "ip_sources"));
    BOOST_OUTCOME_TRY(const auto ports, bounded_items(group.ports, group.port_count, "ports"));
    BOOST_OUTCOME_TRY(write_records(object, "ip_sources", sources, source_fields));
    return write_records(object, "ports", ports, member_port_fields);
}

Result<Bitmap_vlan> get_all_vlans(ILogger& logger) {
    Bitmap_vlan vlans{};
    BOOST_OUTCOME_TRY(core::call_c_api(logger, prepare_bitmap_vlan, &vlans));
    bitfield_reset(vlans.bits, vlans.size);
    bitfield_invert(vlans.bits, vlans.size);
    return vlans;
}

} // namespace

constinit const RouteShape MonitoringIgmpGroupsHandler::shape{.answer = &object_of<answer_members>};

Result<Response> MonitoringIgmpGroupsHandler::operator()(const Request&,
                                                         const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    return answer_with_data(session, [&] { return create_payload(); });
}

Result<void> MonitoringIgmpGroupsHandler::serialize_payload(JsonWriter& groups, const VlanInfo& vlan) {
    for (std::size_t i = 0; i < vlan->group_count; ++i) {
        BOOST_OUTCOME_TRY(write_object(groups, [&] { return fill_group(groups, vlan->groups[i]); }));
    }
    return core::success();
}

Result<void> MonitoringIgmpGroupsHandler::check_daemon() const {
    const auto connected = ipc_->connect(igmp_address);
    if (connected || connected.error().code == Error::Already) {
        return core::success();
    }
    log_error(*logger_, "IGMP groups: {}", connected.error().to_string());
    return ErrorPayload(connected.error().code, "IGMP is unavailable");
}

Result<std::string> MonitoringIgmpGroupsHandler::create_payload() const {
    BOOST_OUTCOME_TRY(check_daemon());
    BOOST_OUTCOME_TRY(const auto all_vlans, get_all_vlans(*logger_));
    std::vector<std::uint16_t> snooping;
    JsonWriter groups(data_depth + 1);
    groups.begin_array();
    std::uint64_t group_count = 0;
    Bitmap_iterator iterator{};
    for (std::uint16_t id = 0; get_next_bitmap_vlan_ids(&all_vlans, &iterator, &id) == 0;) {
        BOOST_OUTCOME_TRY(const auto vlan, get_vlan(id));
        if (vlan->is_snooping != 0) {
            snooping.push_back(id);
        }
        BOOST_OUTCOME_TRY(serialize_payload(groups, vlan));
        group_count += vlan->group_count;
    }
    groups.end_array();
    return write_data([&](JsonWriter& root) -> Result<void> {
        root.begin_object();
        root.key("vlans");
        write_numbers(root, std::span<const std::uint16_t>(snooping));
        root.key("igmp_groups_count");
        root.integer(group_count);
        root.key("igmp_groups");
        root.raw(std::move(groups).take());
        root.end_object();
        return core::success();
    });
}

Result<MonitoringIgmpGroupsHandler::VlanInfo> MonitoringIgmpGroupsHandler::get_vlan(std::uint16_t vlan) const {
    const auto read = [&]() -> Result<VlanInfo> {
        BOOST_OUTCOME_TRY(auto info,
                          fetch_from_peers<Igmp_vlan_info>(custom_layer__get_igmp_snooping_groups_unsafe, vlan));
        if (info->group_count > 0 && info->groups == nullptr) {
            return ErrorPayload(Error::InvalidInputArg, "Object cannot be null");
        }
        return VlanInfo(std::move(info));
    };
    auto info = read();
    if (!info) {
        log_error(*logger_, "IGMP groups of VLAN {}: {}", vlan, info.error().to_string());
        return ErrorPayload(info.error().code, "Error at receiving IGMP group info");
    }
    return info;
}

} // namespace xpon::api_service
