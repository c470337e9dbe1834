#include "api_service/handlers/monitoring/mac_table_handler.hpp"

#include "api_service/handlers/monitoring/wire_texts.hpp"
#include "api_service/handlers/record_fields.hpp"

#include <fmt/compile.h>

namespace xpon::api_service {
namespace {

/// By Mac_entry_type.
constexpr const char* entry_types[] = {"dynamic", "static"};

constexpr Shape ont_shape{.form = Shape::Form::text, .pattern = "^([1-9][0-9]*/[1-9][0-9]*)?$"};

std::string ont_text(const Bcm_mac_entry& entry) {
    const bool is_behind_ont = entry.kind == switch_port_pon && entry.ont_id != 0;
    return is_behind_ont ? fmt::format(FMT_COMPILE("{}/{}"), entry.number, entry.ont_id) : std::string();
}

constexpr JsonField<Bcm_mac_entry> entry_fields[] = {
    {"mac",
     {[](JsonWriter& to, const Bcm_mac_entry& entry) { return write_value(to, mac_text(entry.mac)); }, &shapes::mac}},
    {"port",
     {[](JsonWriter& to, const Bcm_mac_entry& entry) {
          return write_value(to, switch_port_text(entry.kind, entry.unit, entry.number));
      },
      &switch_port_shape}},
    {"svid", member<&Bcm_mac_entry::svid>},
    {"cvid", member<&Bcm_mac_entry::cvid>, "0 = one tag"},
    {"uvid", member<&Bcm_mac_entry::uvid>, "at the subscriber's port; 0 = untagged"},
    {"ont",
     {[](JsonWriter& to, const Bcm_mac_entry& entry) { return write_value(to, ont_text(entry)); }, &ont_shape},
     "PON port/ONT; empty = behind none"},
    {"gem", member<&Bcm_mac_entry::gem>, "0 = none"},
    {"type",
     {[](JsonWriter& to, const Bcm_mac_entry& entry) {
          return write_value(to, text_of_value(entry_types, entry.type));
      },
      &text_among<entry_types>}},
};
constexpr Shape entry_shape = named("MacEntry", object_of<entry_fields>);

} // namespace

constinit const RouteShape MonitoringMacTable::shape{.indices = IndexCount::none_or_one,
                                                     .answer = &array_of<entry_shape>};

Result<Response> MonitoringMacTable::operator()(const Request& request, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    return answer_with_data(session, [&]() -> Result<std::string> {
        BOOST_OUTCOME_TRY(const auto table, get_mac_table(request));
        return serialize_payload(*table);
    });
}

Result<LibraryBuffer<Bcm_get_mac_table_response>> MonitoringMacTable::get_mac_table(const Request& request) const {
    const auto& indices = request.indices;
    if (indices.empty()) {
        return fetch_list_from_peers<Bcm_get_mac_table_response>(custom_layer__get_mac_table);
    }
    if (indices.size() > 1) {
        return ErrorPayload(Error::InvalidInputArg, "Indices cannot contain more than 1 element");
    }
    Bitmap_ont_range range{};
    BOOST_OUTCOME_TRY(
        core::call_c_api(*logger_, [&] { return get_parsed_ont_range(indices.front().c_str(), &range); }));
    return fetch_list_from_peers<Bcm_get_mac_table_response>(custom_layer__get_mac_table_by_ont_range, &range);
}

Result<std::string> MonitoringMacTable::serialize_payload(const Bcm_get_mac_table_response& table) {
    return write_data([&](JsonWriter& writer) {
        return write_objects(writer, std::span(table.entries, table.count),
                             [&](const Bcm_mac_entry& entry) { return write_fields(writer, entry, entry_fields); });
    });
}

} // namespace xpon::api_service
