#include "cfgdb/factory_contents.hpp"

#include <array>

namespace xpon::cfgdb {
namespace {

constexpr auto dba = element_of<ProfileOntDba>;
constexpr auto shaping = element_of<ProfileOntShaping>;
constexpr auto ports = element_of<ProfileOntPortsCfg>;
constexpr auto management = element_of<ProfileOntManagementCfg>;
constexpr auto cross_connect = element_of<ProfileOntCrossConnect>;
constexpr auto ont_template = element_of<OntTemplate>;

constexpr std::array contents{
    FactoryContent{dba, 1, R"({"name":"best-effort"})"},
    FactoryContent{dba, 2, R"({"name":"assured-20m","tcont_type":"type3","assured_kbps":20480,
        "maximum_kbps":1024000,"additional":"non_assured"})"},
    FactoryContent{dba, 3, R"({"name":"voice","tcont_type":"type1","fixed_kbps":512,"maximum_kbps":512,
        "additional":"none"})"},
    FactoryContent{dba, 4, R"({"name":"management","tcont_type":"type2","assured_kbps":256,"maximum_kbps":256,
        "additional":"none"})"},
    FactoryContent{shaping, 1, R"({"name":"no-limit"})"},
    FactoryContent{ports, 1, R"({"name":"data-only"})"},
    FactoryContent{ports, 2, R"({"name":"data-voice","pots":[true,true],"sip_proxy":"sip.example.net"})"},
    FactoryContent{management, 1, R"({"name":"omci"})"},
    FactoryContent{management, 2, R"({"name":"tr069","mode":"tr069","acs_from_dhcp":true})"},
    FactoryContent{cross_connect, 1, R"({"name":"bridged-internet","s_vid":100,"dhcp_agent":true})"},
    FactoryContent{cross_connect, 2, R"({"name":"routed-internet","termination":"veip","s_vid":100,
        "pppoe_agent":true})"},
    FactoryContent{cross_connect, 3, R"({"name":"iptv","service_type":"iptv","uni_ports":[2],"s_vid":200,
        "multicast_vid":201,"igmp_snooping":true,"priority":4})"},
    FactoryContent{cross_connect, 4, R"({"name":"voip","service_type":"voip","termination":"ip_host","s_vid":300,
        "dhcp_agent":true,"priority":5})"},
    FactoryContent{cross_connect, 5, R"({"name":"ont-management","service_type":"management",
        "termination":"ip_host","s_vid":400,"dhcp_agent":true,"priority":6})"},
    FactoryContent{cross_connect, 6, R"({"name":"business-1to1","vlan_model":"one_to_one","s_vid":500})"},
    FactoryContent{ont_template, 1, R"({"name":"bridged","ports_profile":1,"management_profile":1,
        "shaping_profile":1,"services":[{"cross_connect":1,"dba":1}]})"},
    FactoryContent{ont_template, 2, R"({"name":"triple-play","ports_profile":2,"management_profile":2,
        "shaping_profile":1,"services":[{"cross_connect":2,"dba":2},{"cross_connect":3,"dba":1},
        {"cross_connect":4,"dba":3},{"cross_connect":5,"dba":4}]})"},
};

} // namespace

std::span<const FactoryContent> factory_contents() {
    return contents;
}

} // namespace xpon::cfgdb
