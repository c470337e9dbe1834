#include "client/oltctl/configuration/elements.hpp"

#include <algorithm>

namespace xpon::oltctl {
namespace {

constexpr auto onts_of_a_port = "256";
constexpr auto services_of_an_ont = "8";

constexpr Element all[] = {
    {"configuration.CommonGCfg.hostname", {}},
    {"configuration.CommonGCfg.management", {}},
    {"configuration.CommonGCfg.system.oob", {}},
    {"configuration.CommonGCfg.system.ntp", {}},
    {"configuration.CommonGCfg.system.snmp", {}},
    {"configuration.CommonGCfg.system.fan_speed", {}, nullptr},
    {"configuration.CommonGCfg.system.reset_status", {}, nullptr},
    {"configuration.CommonGCfg.system.settings.ont_sn_format", {}},
    {"configuration.ZebGCfg.switch_config.front_port", {"FRONT_PORT_COUNT"}},
    {"configuration.ZebGCfg.switch_config.port_channel", {"PORT_CHANNEL_COUNT"}},
    {"configuration.ZebGCfg.pon.port_state", {"PON_PORT_COUNT"}},
    {"configuration.CommonGCfg.profiles.profiles_ont.ports", {"PROFILE_PORTS_COUNT"}},
    {"configuration.CommonGCfg.profiles.profiles_ont.cross_connect", {"PROFILE_CROSS_CONNECT_COUNT"}},
    {"configuration.CommonGCfg.profiles.profiles_ont.management", {"PROFILE_MANAGEMENT_COUNT"}},
    {"configuration.CommonGCfg.profiles.profiles_ont.dba", {"PROFILE_DBA_COUNT"}},
    {"configuration.CommonGCfg.profiles.profiles_ont.shaping", {"PROFILE_SHAPING_COUNT"}},
    {"configuration.CommonGCfg.profiles.profiles_ont.ont_template", {"ONT_TEMPLATE_COUNT"}},
    {"configuration.ZebGCfg.pon.ont", {"PON_PORT_COUNT", onts_of_a_port}, "operator"},
    {"configuration.ZebGCfg.pon.ont.service", {"PON_PORT_COUNT", onts_of_a_port, services_of_an_ont}},
};

} // namespace

unsigned Element::depth() const {
    return static_cast<unsigned>(std::ranges::find(last, nullptr) - last.begin());
}

std::span<const Element> elements() {
    return all;
}

const Element* find_element(std::string_view path) {
    const auto* const found = std::ranges::find(all, path, &Element::path);
    return found == std::end(all) ? nullptr : found;
}

} // namespace xpon::oltctl
