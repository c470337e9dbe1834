#include "cfgdb/factory.hpp"

#include "serializer/object_json.hpp"
#include "serializer/record_json.hpp"

#include <array>
#include <cassert>
#include <map>
#include <vector>

namespace xpon::cfgdb {
namespace {

/// A record that leaves the factory with more than its defaults.
struct FactoryContent {
    ElementId element;
    std::uint16_t number; ///< from 1, as clients count
    const char* json;
};

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

using Record = std::vector<std::byte>;

struct Factory {
    std::vector<Record> defaults; ///< by element
    std::map<RecordId, Record> contents;
};

Record read_content(const FactoryContent& content) {
    const auto& table = element(content.element).table;
    const auto data = serializer::owned(cJSON_Parse(content.json));
    Record record(table.size);
    cJSON* errors = nullptr;
    if (serializer::deserialize_record(table, data.get(), record.data(), &errors) != 0) {
        throw std::bad_alloc();
    }
    assert(errors == nullptr);
    return record;
}

Factory make_factory() {
    Factory factory;
    for (const auto& row : all_elements()) {
        serializer::set_defaults(row.table, factory.defaults.emplace_back(row.table.size).data());
    }
    for (const auto& content : contents) {
        const auto index = static_cast<std::uint16_t>(content.number - 1);
        factory.contents.emplace(RecordId{content.element, {index, 0}}, read_content(content));
    }
    return factory;
}

} // namespace

Bytes factory_record(const RecordId& id) {
    static const auto factory = make_factory();
    const auto content = factory.contents.find(id);
    return content != factory.contents.end() ? content->second : factory.defaults[static_cast<std::size_t>(id.element)];
}

} // namespace xpon::cfgdb
