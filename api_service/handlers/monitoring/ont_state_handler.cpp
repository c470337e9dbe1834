#include "api_service/handlers/monitoring/ont_state_handler.hpp"

#include "api_service/handlers/monitoring/ont_fields.hpp"

namespace xpon::api_service {

using cfgdb::PonOnt;
namespace {

constexpr JsonField<PonOnt> configuration_fields[] = {
    {"password", member<&PonOnt::password>},
    {"description", member<&PonOnt::description>},
};

constexpr JsonField<Ont__state_info> ont_info_fields[] = {
    {"equipment_id", member<&Ont__state_info::equipment_id>},
    {"hardware_version", member<&Ont__state_info::hardware_version>},
    {"software_version", member<&Ont__state_info::software_version>},
    {"equalization_delay", member<&Ont__state_info::equalization_delay>, "bit times of 1.24416 Gbit/s"},
    {"fec_state", member<&Ont__state_info::fec_state>, "0 or 1, upstream"},
    {"distance", member<&Ont__state_info::distance>, "m"},
    {"rssi", member<&Ont__state_info::rssi>, "dBm at the OLT"},
};

constexpr JsonField<Ont_unactivated_entry> password_fields[] = {
    {"password", member<&Ont_unactivated_entry::password>},
};

constexpr Member activated_members[] = {
    {"ont_info", &object_of<ont_info_fields>, "what the ONT says of itself and what is measured of it"},
    {"alloc_ids", &array_of<shape_of<std::uint16_t>>, "the first is that of the management channel"},
};

/// In operation or on the way there, seen but not activated, not seen, and seen but not configured.
constexpr Shape ont_shape = named(
    "OntState", one_of<object_of<configured_ont_fields, configuration_fields, activated_ont_fields, activated_members>,
                       object_of<configured_ont_fields, configuration_fields, unactivated_ont_fields>,
                       object_of<configured_ont_fields, configuration_fields>,
                       object_of<unactivated_ont_serial_fields, password_fields, unactivated_ont_fields>>);

Result<void> fill_activated(JsonWriter& object, const Ont__state_info& state) {
    BOOST_OUTCOME_TRY(write_fields(object, state, activated_ont_fields));
    BOOST_OUTCOME_TRY(write_record(object, "ont_info", state, ont_info_fields));
    BOOST_OUTCOME_TRY(const auto alloc_ids, bounded_items(state.alloc_ids, state.alloc_count, "alloc_ids"));
    object.key("alloc_ids");
    write_numbers(object, alloc_ids);
    return core::success();
}

Result<void> fill_configured(JsonWriter& object, const ConfiguredOnt& ont) {
    BOOST_OUTCOME_TRY(write_fields(object, ont, configured_ont_fields));
    BOOST_OUTCOME_TRY(write_fields(object, ont.configuration, configuration_fields));
    if (ont.state != nullptr) {
        return fill_activated(object, *ont.state);
    }
    if (ont.unactivated != nullptr) {
        return write_fields(object, *ont.unactivated, unactivated_ont_fields);
    }
    return core::success();
}

Result<void> fill_unconfigured(JsonWriter& object, const Ont_unactivated_entry& ont) {
    BOOST_OUTCOME_TRY(write_fields(object, ont, unactivated_ont_serial_fields));
    BOOST_OUTCOME_TRY(write_fields(object, ont, password_fields));
    return write_fields(object, ont, unactivated_ont_fields);
}

Result<void> write_onts(JsonWriter& writer, OntWalk& walk) {
    writer.begin_array();
    for (;;) {
        BOOST_OUTCOME_TRY(const auto ont, walk.next());
        if (!ont) {
            break;
        }
        BOOST_OUTCOME_TRY(write_object(writer, [&] { return fill_configured(writer, *ont); }));
    }
    BOOST_OUTCOME_TRY(walk.finish());
    for (const auto* ont : walk.unclaimed()) {
        BOOST_OUTCOME_TRY(write_object(writer, [&] { return fill_unconfigured(writer, *ont); }));
    }
    writer.end_array();
    return core::success();
}

} // namespace

constinit const RouteShape MonitoringOntStateHandler::shape{.indices = IndexCount::none_or_two,
                                                            .answer = &array_of<ont_shape>};

Result<Response> MonitoringOntStateHandler::operator()(const Request& request,
                                                       const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session));
    return answer_with_data(session, [&]() -> Result<std::string> {
        BOOST_OUTCOME_TRY(const auto range, get_ont_range(request));
        return serialize_payload(*db, range);
    });
}

Result<Bitmap_ont_range> MonitoringOntStateHandler::get_ont_range(const Request& request) const {
    const auto& indices = request.indices;
    if (indices.empty()) {
        return get_all_ont_range(*logger_);
    }
    if (indices.size() == 1) {
        return ErrorPayload(Error::InvalidInputArg, "Indices cannot contain a single element");
    }
    if (indices.size() > 2) {
        return ErrorPayload(Error::InvalidInputArg, "Indices must contain no more than two elements");
    }
    Bitmap_ont_range range{};
    BOOST_OUTCOME_TRY(core::call_c_api(
        *logger_, [&] { return get_parsed_ont_range(indices[0].c_str(), indices[1].c_str(), &range); }));
    return range;
}

Result<std::string> MonitoringOntStateHandler::serialize_payload(const cfgdb::CfgDbWrapper& db,
                                                                 const Bitmap_ont_range& range) const {
    BOOST_OUTCOME_TRY(const auto reports, OntReports::get(*logger_, *this, range));
    OntWalk walk(*logger_, db, range, reports);
    return write_data([&](JsonWriter& writer) { return write_onts(writer, walk); });
}

} // namespace xpon::api_service
