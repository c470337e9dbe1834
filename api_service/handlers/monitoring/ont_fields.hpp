#pragma once

#include "api_service/handlers/monitoring/ont_walk.hpp"
#include "api_service/handlers/record_fields.hpp"

// Parts of an ONT's object that both answers about ONTs have.

namespace xpon::api_service {

inline constexpr JsonField<ConfiguredOnt> configured_ont_fields[] = {
    {"cfg_port", member<&ConfiguredOnt::port>, "PON port where it is configured"},
    {"cfg_ont_id", member<&ConfiguredOnt::ont_id>, "its configured number on that port"},
    {"serial",
     {[](JsonWriter& to, const ConfiguredOnt& ont) -> Result<void> {
          write_numbers(to, std::span<const std::uint8_t>(ont.serial));
          return core::success();
      },
      &shapes::serial}},
};

inline constexpr Shape activated_state{.form = Shape::Form::text, .text_of = [](unsigned value) {
                                           return ont_state_to_str(static_cast<Ont_state>(value));
                                       }};
inline constexpr const char* unactivated_state[] = {"UNACTIVATED"};

inline constexpr JsonField<Ont__state_info> activated_ont_fields[] = {
    {"state",
     {[](JsonWriter& to, const Ont__state_info& ont) { return write_value(to, ont_state_to_str(ont.state)); },
      &activated_state}},
    {"port", member<&Ont__state_info::port>, "PON port where it is seen"},
};

inline constexpr JsonField<Ont_unactivated_entry> unactivated_ont_fields[] = {
    {"port", member<&Ont_unactivated_entry::port>, "PON port where it is seen"},
    {"state",
     {[](JsonWriter& to, const Ont_unactivated_entry&) { return write_value(to, unactivated_state[0]); },
      &text_among<unactivated_state>}},
};

inline constexpr JsonField<Ont_unactivated_entry> unactivated_ont_serial_fields[] = {
    {"serial", member<&Ont_unactivated_entry::serial>},
};

} // namespace xpon::api_service
