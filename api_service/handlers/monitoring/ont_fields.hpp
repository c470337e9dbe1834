#pragma once

#include "api_service/handlers/monitoring/ont_walk.hpp"
#include "api_service/handlers/record_fields.hpp"

// Parts of an ONT's object that both answers about ONTs have.

namespace xpon::api_service {

inline constexpr JsonField<ConfiguredOnt> configured_ont_fields[] = {
    {"cfg_port", member<&ConfiguredOnt::port>},
    {"cfg_ont_id", member<&ConfiguredOnt::ont_id>},
    {"serial", [](const ConfiguredOnt& ont) { return create_number_array(std::span<const std::uint8_t>(ont.serial)); }},
};

inline constexpr JsonField<Ont__state_info> activated_ont_fields[] = {
    {"state", [](const Ont__state_info& ont) { return create_field_value(ont_state_to_str(ont.state)); }},
    {"port", member<&Ont__state_info::port>},
};

inline constexpr JsonField<Ont_unactivated_entry> unactivated_ont_fields[] = {
    {"port", member<&Ont_unactivated_entry::port>},
    {"state", [](const Ont_unactivated_entry&) { return create_field_value("UNACTIVATED"); }},
};

inline constexpr JsonField<Ont_unactivated_entry> unactivated_ont_serial_fields[] = {
    {"serial", member<&Ont_unactivated_entry::serial>},
};

} // namespace xpon::api_service
