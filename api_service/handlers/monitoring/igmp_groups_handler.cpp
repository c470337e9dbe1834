#include "api_service/handlers/monitoring/igmp_groups_handler.hpp"

#include "api_service/handlers/library_buffers.hpp"
#include "api_service/handlers/monitoring/wire_texts.hpp"
#include "api_service/handlers/record_fields.hpp"
#include "api_service/peers.hpp"
#include "xpon/ranges/vlan_range.h"

namespace xpon::api_service {
namespace {

const char* filter_mode_text(Igmp_filter_mode mode) {
    return mode == igmp_include ? "INCLUDE" : "EXCLUDE";
}

constexpr JsonField<Igmp_group> group_fields[] = {
    {"group_address", [](const Igmp_group& group) { return create_field_value(ipv4_text(group.address)); }},
    {"is_in_deletion_queue", flag<&Igmp_group::is_in_deletion_queue>},
    {"filter_mode", [](const Igmp_group& group) { return create_field_value(filter_mode_text(group.filter_mode)); }},
    {"vlan", member<&Igmp_group::vlan>},
};

constexpr JsonField<Igmp_source> source_fields[] = {
    {"ip_address", [](const Igmp_source& source) { return create_field_value(ipv4_text(source.ip)); }},
    {"filter_mode", [](const Igmp_source& source) { return create_field_value(filter_mode_text(source.filter_mode)); }},
};

constexpr JsonField<Igmp_member_port> port_fields[] = {
    {"port",
     [](const Igmp_member_port& port) {
         return create_field_value(switch_port_text(port.kind, port.unit, port.number));
     }},
    {"is_static", flag<&Igmp_member_port::is_static>},
    {"expires_sec", member<&Igmp_member_port::expires_sec>},
};

/// Adds an array of a group's sources or ports. `index_name` stands for them in the text of an error.
template <class Item>
Result<void> add_items(cJSON* group, const char* key, std::span<const Item> items, JsonFields<Item> fields,
                       std::size_t group_idx, const char* index_name) {
    BOOST_OUTCOME_TRY(auto made, made_for(create_array(), "group_idx {}", group_idx));
    cJSON* const array = made.get();
    BOOST_OUTCOME_TRY(add_to_object(group, key, std::move(made)));
    for (std::size_t i = 0; i < items.size(); ++i) {
        BOOST_OUTCOME_TRY(auto* object,
                          made_for(create_object_in_array(array), "group_idx {}, {} {}", group_idx, index_name, i));
        BOOST_OUTCOME_TRY(add_fields(object, items[i], fields));
    }
    return core::success();
}

Result<void> fill_group(cJSON* object, const Igmp_group& group, std::size_t group_idx) {
    BOOST_OUTCOME_TRY(add_fields(object, group, group_fields));
    BOOST_OUTCOME_TRY(const auto sources, bounded_items(group.sources, group.source_count, "ip_sources"));
    BOOST_OUTCOME_TRY(const auto ports, bounded_items(group.ports, group.port_count, "ports"));
    BOOST_OUTCOME_TRY(add_items(object, "ip_sources", sources, source_fields, group_idx, "ip_src_idx"));
    return add_items(object, "ports", ports, port_fields, group_idx, "port_idx");
}

Result<Bitmap_vlan> get_all_vlans(ILogger& logger) {
    Bitmap_vlan vlans{};
    BOOST_OUTCOME_TRY(core::call_c_api(logger, prepare_bitmap_vlan, &vlans));
    bitfield_reset(vlans.bits, vlans.size);
    bitfield_invert(vlans.bits, vlans.size);
    return vlans;
}

} // namespace

Result<Response> MonitoringIgmpGroupsHandler::operator()(const Request&,
                                                         const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    return answer_with_data(session, [&] { return create_payload(); });
}

Result<void> MonitoringIgmpGroupsHandler::serialize_payload(cJSON* groups, const VlanInfo& vlan) {
    for (std::size_t i = 0; i < vlan->group_count; ++i) {
        BOOST_OUTCOME_TRY(auto* object, create_object_in_array(groups));
        BOOST_OUTCOME_TRY(fill_group(object, vlan->groups[i], i));
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

Result<JsonTree> MonitoringIgmpGroupsHandler::create_payload() const {
    BOOST_OUTCOME_TRY(check_daemon());
    BOOST_OUTCOME_TRY(const auto all_vlans, get_all_vlans(*logger_));
    BOOST_OUTCOME_TRY(auto snooping, create_array());
    BOOST_OUTCOME_TRY(auto groups, create_array());
    std::uint64_t group_count = 0;
    Bitmap_iterator iterator{};
    for (std::uint16_t id = 0; get_next_bitmap_vlan_ids(&all_vlans, &iterator, &id) == 0;) {
        BOOST_OUTCOME_TRY(const auto vlan, get_vlan(id));
        if (vlan->is_snooping != 0) {
            BOOST_OUTCOME_TRY(auto number, create_integer(id));
            BOOST_OUTCOME_TRY(add_to_array(snooping.get(), std::move(number)));
        }
        BOOST_OUTCOME_TRY(serialize_payload(groups.get(), vlan));
        group_count += vlan->group_count;
    }
    BOOST_OUTCOME_TRY(auto root, create_object());
    BOOST_OUTCOME_TRY(add_to_object(root.get(), "vlans", std::move(snooping)));
    BOOST_OUTCOME_TRY(set_object_item(root.get(), "igmp_groups_count", group_count));
    BOOST_OUTCOME_TRY(add_to_object(root.get(), "igmp_groups", std::move(groups)));
    return root;
}

Result<MonitoringIgmpGroupsHandler::VlanInfo> MonitoringIgmpGroupsHandler::get_vlan(std::uint16_t vlan) const {
    const auto read = [&]() -> Result<VlanInfo> {
        BOOST_OUTCOME_TRY(auto info, fetch_buffer<Igmp_vlan_info>(
                                         *logger_, custom_layer__get_igmp_snooping_groups_unsafe, ipc_->raw(), vlan));
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
