#include "simulator/firmware/firmware.hpp"
#include "simulator/plant/named_plants.hpp"
#include "simulator/reports/board_report.hpp"
#include "simulator/reports/counter_report.hpp"
#include "simulator/reports/ont_report.hpp"
#include "simulator/reports/port_report.hpp"
#include "simulator/reports/subscriber_report.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/simulator/plant/plant_fixture.hpp"

#include <cstddef>
#include <cstring>
#include <map>
#include <set>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

template <class Value>
std::string text_of(const Value& value) {
    if constexpr (std::is_enum_v<Value>) {
        return fmt::format("{}", static_cast<unsigned>(value));
    } else if constexpr (std::is_array_v<Value> && !std::is_same_v<std::remove_extent_t<Value>, char>) {
        return fmt::format("{}", fmt::join(value, ","));
    } else {
        return fmt::format("{}", value);
    }
}

/// The values that each field took, over all records of all plants.
class SeenValues {
public:
    /// Fields go by their places among those given.
    template <class... Fields>
    void add(const std::string& record, const Fields&... fields) {
        unsigned nth = 0;
        (seen_[fmt::format("{}[{}]", record, nth++)].insert(text_of(fields)), ...);
    }
    [[nodiscard]] std::set<std::string> constant_fields() const {
        std::set<std::string> constant;
        for (const auto& [field, values] : seen_) {
            if (values.size() < 2) {
                constant.insert(field + " = " + *values.begin());
            }
        }
        return constant;
    }

private:
    std::map<std::string, std::set<std::string>> seen_;
};

void see_environment(SeenValues& seen, const System_environment_data& data) {
    seen.add("environment", data.ram_total, data.ram_free, data.disk_total, data.disk_free, data.load_1m, data.load_5m,
             data.load_15m, data.fpga_version, data.pld_version);
    for (const auto& fan : std::span(data.fans, data.fan_count)) {
        seen.add("fan", fan.is_fault, fan.is_present, fan.rate);
    }
    for (const auto& sensor : std::span(data.temp_sensors, data.temp_sensor_count)) {
        seen.add("sensor", sensor.id, sensor.value);
    }
    for (const auto& supply : data.power_sources) {
        seen.add("supply", supply.is_220v_present, supply.is_present, supply.is_power_good, supply.is_read_info,
                 supply.is_required_reset);
        if (supply.is_read_info != 0) {
            seen.add("supply info", supply.model, supply.type, supply.serial, supply.version, supply.revision,
                     supply.date);
        }
    }
}

void see_facts(SeenValues& seen, const Device_facts& facts) {
    seen.add("facts", facts.factory.device_type, facts.factory.board_version, facts.factory.serial_number,
             facts.factory.mac_address, facts.factory.device_name, facts.uptime_s);
    for (const auto& slot : facts.slots) {
        seen.add("slot", slot.version, slot.built, slot.size, slot.crc, slot.valid);
    }
}

void see_module(SeenValues& seen, const std::string& where, const Sfp_identification& sfp) {
    seen.add(where, sfp.condition);
    if (sfp.condition == sfp_present) {
        seen.add(where + " module", sfp.condition_text, sfp.vendor, sfp.part_number, sfp.revision);
    }
}

void see_ports(SeenValues& seen, const Plant& plant) {
    for (unsigned port = 1; port <= front_ports; ++port) {
        const auto front = report_front_port(plant, port);
        see_module(seen, "front", front.sfp);
        const auto eddi = report_front_diagnostics(plant, port);
        seen.add("front port", front.speed, front.media, plant.front_link_is_up(port), eddi.has_value());
        if (eddi) {
            seen.add("front diagnostics", eddi->temperature, eddi->voltage, eddi->bias, eddi->power);
        }
    }
    for (const auto& pon : report_pon_states(plant).ports) {
        seen.add("pon port", pon.channel_state, pon.ont_count);
    }
    for (const auto& module : report_pon_modules(plant).ports) {
        see_module(seen, "pon", module.sfp);
        seen.add("pon valid", module.valid);
        if (module.valid != 0) {
            seen.add("pon diagnostics", module.temperature, module.voltage, module.bias, module.power);
        }
    }
}

void see_onts(SeenValues& seen, const Plant& plant) {
    Bitmap_ont_range onts{.size = max_onts, .bits = {}};
    std::fill(std::begin(onts.bits), std::end(onts.bits), std::uint8_t{0xff});
    const Bitmap_pon_port_range ports{.size = pon_ports + 1, .bits = {0xff, 0xff, 0xff}};
    for (const auto& ont : report_ont_states(plant, onts)) {
        seen.add("ont", ont.serial, std::string(ont.serial, ont.serial + 4), ont.state, ont.port, ont.ont_id,
                 ont.equipment_id, ont.hardware_version, ont.software_version, ont.equalization_delay, ont.fec_state,
                 ont.distance, ont.rssi, ont.alloc_count, ont.alloc_ids[0], ont.alloc_ids[1]);
    }
    for (const auto& ont : report_unactivated(plant, ports)) {
        seen.add("unactivated", ont.serial, ont.port, ont.password);
    }
}

void see_subscribers(SeenValues& seen, const AccessNetwork& network) {
    for (const auto& lease : report_dhcp_sessions(network)) {
        seen.add("lease", lease.pon_port, lease.ont_id, lease.mac, lease.service_id, lease.gem_port, lease.outer_vid,
                 lease.ip, lease.life_time_msec, lease.ont_serial);
    }
    for (const auto& session : report_pppoe_sessions(network)) {
        seen.add("session", session.pon_port, session.ont_id, session.gem_port, session.session_id,
                 session.session_id == 0, session.ont_serial, session.duration_sec, session.unblock_rest_sec,
                 session.client_mac);
    }
    for (const auto& host : report_mac_table(network)) {
        seen.add("address", host.mac, host.kind, host.number, host.svid, host.cvid, host.uvid, host.ont_id, host.gem,
                 host.type);
    }
}

void see_groups(SeenValues& seen, const AccessNetwork& network) {
    seen.add("snooping", report_snooping_vlans(network.plant()).bits);
    for (const auto& group : report_igmp_groups(network)) {
        seen.add("group", group.address, group.is_in_deletion_queue, group.filter_mode, group.vlan, group.source_count,
                 group.port_count);
        for (const auto& source : std::span(group.sources, group.source_count)) {
            seen.add("source", source.ip, source.filter_mode);
        }
        for (const auto& port : std::span(group.ports, group.port_count)) {
            seen.add("member", port.kind, port.number, port.is_static, port.expires_sec);
        }
    }
}

/// The words of a record from an offset in octets on: `count` of each `stride` of them, which are one field.
template <class Word = std::uint32_t>
void see_words(SeenValues& seen, const std::string& name, const auto& record, std::size_t offset = 0,
               std::size_t size = 0, std::size_t stride = 1, std::size_t count = 1) {
    std::vector<Word> words((size == 0 ? sizeof record - offset : size) / sizeof(Word));
    std::memcpy(words.data(), reinterpret_cast<const std::byte*>(&record) + offset, words.size() * sizeof(Word));
    for (std::size_t nth = 0; nth < words.size(); ++nth) {
        if (nth % stride < count) {
            seen.add(fmt::format("{} {}", name, nth / stride), words[nth]);
        }
    }
}

/// The first of the record's arrays that have a value per instance.
template <class Record>
void see_arrays(SeenValues& seen, const std::string& name, const Record& record, std::size_t arrays,
                std::size_t count) {
    see_words(seen, name, record, offsetof(Record, finished_intervals), arrays * sizeof(Ont_instance_values),
              max_counter_instances, count);
}

template <class Record>
void see_history(SeenValues& seen, const std::string& name, const Record& record) {
    seen.add(name + " count", record.count);
    see_arrays(seen, name, record, sizeof record / sizeof(Ont_instance_values), record.count);
}

template <class Group>
void see_group(SeenValues& seen, const std::string& name, const Group& group) {
    seen.add(name + " valid", group.valid);
    if (group.valid != 0) {
        see_words(seen, name, group, offsetof(Group, finished_intervals));
    }
}

template <class Record>
void see_groups_of(SeenValues& seen, const std::string& name, const Record& record) {
    see_group(seen, name + " multicast", record.mc);
    see_group(seen, name + " broadcast", record.bc);
}

void see_counters(SeenValues& seen, const Plant& plant) {
    for (const auto& [index, settings] : plant.configuration().onts) {
        const auto gem = report_gem_port_pm(plant, index);
        seen.add("gem port", gem.number[0]);
        see_arrays(seen, "gem port", gem, 7, gem.count);
        see_groups_of(seen, "gem port", gem);
        const auto nctp = report_gem_port_nctp_pm(plant, index);
        see_arrays(seen, "nctp downstream", nctp.downstream, 3, nctp.count);
        see_arrays(seen, "nctp upstream", nctp.upstream, 3, nctp.count);
        see_groups_of(seen, "nctp", nctp);
        const auto gal = report_gal_eth_pm(plant, index);
        see_arrays(seen, "gal", gal, 2, gal.count);
        see_groups_of(seen, "gal", gal);
        see_history(seen, "eth", report_eth_pm(plant, index));
        see_history(seen, "eth 2", report_eth_pm_2(plant, index));
        see_history(seen, "eth 3", report_eth_pm_3(plant, index));
        see_history(seen, "fec", report_fec_pm(plant, index));
        const auto extended = report_eth_frame_ext_pm(plant, index);
        for (const auto* const direction : {&extended.upstream, &extended.downstream}) {
            const std::string name = direction == &extended.upstream ? "ext upstream" : "ext downstream";
            see_arrays(seen, name, *direction, 15, extended.count);
            see_group(seen, name + " veip", direction->veip);
        }
        const auto gem_ports = report_olt_gem_ports(plant, index);
        for (const auto& entry : std::span(gem_ports.entries, gem_ports.count)) {
            see_words<std::uint64_t>(seen, "olt gem port", entry);
        }
        see_words<std::uint64_t>(seen, "olt pon", report_olt_pon(plant, index));
    }
}

TEST(NamedPlants, LeaveNoFieldAtOneValue) {
    SeenValues seen;
    const test::TemporaryOltRoot root;
    for (const auto& named : named_plants()) {
        const PlantParameters parameters{.plant = &named, .size = named.size};
        auto configuration = configured(parameters, named.size.configured, subscriber_services);
        configuration.front[1].is_multicast_router = true;
        configuration.management_vlan = 4000;
        for (auto& [index, settings] : configuration.onts) {
            if (index % 5 == 0) {
                settings.services = {{.number = 3, .broadcast_downstream = false}};
            } else if (index % 5 == 1) {
                settings.services = triple_play();
            }
        }
        AccessNetwork network(parameters, configuration);
        const auto& plant = network.plant();
        network.advance(named.uptime);
        see_environment(seen, report_environment(plant));
        const Firmware firmware(
            {.board = named.board, .is_spoilt = [&](unsigned slot) { return is_slot_spoilt(plant, slot); }},
            std::nullopt);
        see_facts(seen, report_device_facts(plant, firmware.slots(), 1));
        see_ports(seen, plant);
        see_onts(seen, plant);
        see_counters(seen, plant);
        network.advance(named.uptime + std::chrono::minutes(15));
        see_counters(seen, plant);
        see_subscribers(seen, network);
        // Groups are in the deletion queue for two seconds only.
        for (int look = 0; look < 30; ++look) {
            network.advance(plant.now() + std::chrono::seconds(2));
            see_groups(seen, network);
        }
    }
    EXPECT_THAT(seen.constant_fields(), testing::IsEmpty());
}

TEST(NamedPlants, HaveFaultsThatExist) {
    for (const auto& named : named_plants()) {
        const PlantParameters parameters{.plant = &named, .size = named.size};
        EXPECT_EQ(Plant(parameters, {}).faults().all().size(), named.faults.size()) << named.name;
    }
}

} // namespace
} // namespace xpon::simulator
