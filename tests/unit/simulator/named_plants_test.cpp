#include "simulator/firmware/firmware.hpp"
#include "simulator/plant/board_report.hpp"
#include "simulator/plant/counter_report.hpp"
#include "simulator/plant/dhcp_sessions.hpp"
#include "simulator/plant/igmp_groups.hpp"
#include "simulator/plant/mac_table.hpp"
#include "simulator/plant/named_plants.hpp"
#include "simulator/plant/ont_report.hpp"
#include "simulator/plant/port_report.hpp"
#include "simulator/plant/pppoe_sessions.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/simulator/subscriber_plant.hpp"
#include "tests/unit/simulator/triple_play.hpp"
#include "xpon/ipc/payload.hpp"

#include <cstddef>
#include <cstring>
#include <map>
#include <set>
#include <span>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

/// The values that each field took, over all records of all plants.
class SeenValues {
public:
    template <class Value>
    void add(const std::string& field, const Value& value) {
        seen_[field].insert(fmt::format("{}", value));
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

#define XPON_SEE(record, member) seen.add(#record "." #member, (record).member)

void see_environment(SeenValues& seen, const System_environment_data& environment) {
    XPON_SEE(environment, ram_total);
    XPON_SEE(environment, ram_free);
    XPON_SEE(environment, disk_total);
    XPON_SEE(environment, disk_free);
    XPON_SEE(environment, load_1m);
    XPON_SEE(environment, load_5m);
    XPON_SEE(environment, load_15m);
    XPON_SEE(environment, fpga_version);
    XPON_SEE(environment, pld_version);
    for (unsigned fan = 0; fan < environment.fan_count; ++fan) {
        XPON_SEE(environment.fans[fan], is_fault);
        XPON_SEE(environment.fans[fan], is_present);
        XPON_SEE(environment.fans[fan], rate);
    }
    for (unsigned sensor = 0; sensor < environment.temp_sensor_count; ++sensor) {
        seen.add("sensor.id", static_cast<unsigned>(environment.temp_sensors[sensor].id));
        XPON_SEE(environment.temp_sensors[sensor], value);
    }
    for (const auto& supply : environment.power_sources) {
        XPON_SEE(supply, is_220v_present);
        XPON_SEE(supply, is_present);
        XPON_SEE(supply, is_power_good);
        XPON_SEE(supply, is_read_info);
        XPON_SEE(supply, is_required_reset);
        if (supply.is_read_info != 0) {
            XPON_SEE(supply, model);
            seen.add("supply.type", static_cast<unsigned>(supply.type));
            XPON_SEE(supply, serial);
            XPON_SEE(supply, version);
            XPON_SEE(supply, revision);
            XPON_SEE(supply, date);
        }
    }
}

void see_facts(SeenValues& seen, const Device_facts& facts) {
    XPON_SEE(facts.factory, device_type);
    XPON_SEE(facts.factory, board_version);
    XPON_SEE(facts.factory, serial_number);
    XPON_SEE(facts.factory, mac_address);
    XPON_SEE(facts.factory, device_name);
    XPON_SEE(facts, uptime_s);
    for (const auto& slot : facts.slots) {
        XPON_SEE(slot, version);
        XPON_SEE(slot, built);
        XPON_SEE(slot, size);
        XPON_SEE(slot, crc);
        XPON_SEE(slot, valid);
    }
}

void see_module(SeenValues& seen, const std::string& where, const Sfp_identification& sfp) {
    seen.add(where + ".condition", static_cast<unsigned>(sfp.condition));
    if (sfp.condition == sfp_present) {
        seen.add(where + ".condition_text", sfp.condition_text);
        seen.add(where + ".vendor", sfp.vendor);
        seen.add(where + ".part_number", sfp.part_number);
        seen.add(where + ".revision", sfp.revision);
    }
}

void see_ports(SeenValues& seen, const Plant& plant) {
    for (unsigned port = 1; port <= front_ports; ++port) {
        const auto front = report_front_port(plant, port);
        see_module(seen, "front", front.sfp);
        XPON_SEE(front, speed);
        XPON_SEE(front, media);
        seen.add("front.link", plant.front_link_is_up(port));
        const auto eddi = report_front_diagnostics(plant, port);
        seen.add("front.has_eddi", eddi.has_value());
        if (eddi) {
            XPON_SEE(*eddi, temperature);
            XPON_SEE(*eddi, voltage);
            XPON_SEE(*eddi, bias);
            XPON_SEE(*eddi, power);
        }
    }
    for (const auto& pon : report_pon_states(plant).ports) {
        seen.add("pon.channel_state", static_cast<unsigned>(pon.channel_state));
        XPON_SEE(pon, ont_count);
    }
    for (const auto& module : report_pon_modules(plant).ports) {
        see_module(seen, "pon", module.sfp);
        XPON_SEE(module, valid);
        if (module.valid != 0) {
            XPON_SEE(module, temperature);
            XPON_SEE(module, voltage);
            XPON_SEE(module, bias);
            XPON_SEE(module, power);
        }
    }
}

std::string text_of(const auto& bytes) {
    return fmt::format("{}", fmt::join(bytes, ","));
}

void see_onts(SeenValues& seen, const Plant& plant) {
    Bitmap_ont_range onts{.size = max_onts, .bits = {}};
    std::fill(std::begin(onts.bits), std::end(onts.bits), std::uint8_t{0xff});
    const Bitmap_pon_port_range ports{.size = pon_ports + 1, .bits = {0xff, 0xff, 0xff}};
    for (const auto& ont : report_ont_states(plant, onts)) {
        seen.add("ont.serial", text_of(ont.serial));
        seen.add("ont.vendor", std::string(ont.serial, ont.serial + 4));
        seen.add("ont.state", static_cast<unsigned>(ont.state));
        XPON_SEE(ont, port);
        XPON_SEE(ont, ont_id);
        XPON_SEE(ont, equipment_id);
        XPON_SEE(ont, hardware_version);
        XPON_SEE(ont, software_version);
        XPON_SEE(ont, equalization_delay);
        XPON_SEE(ont, fec_state);
        XPON_SEE(ont, distance);
        XPON_SEE(ont, rssi);
        XPON_SEE(ont, alloc_count);
        XPON_SEE(ont, alloc_ids[0]);
        XPON_SEE(ont, alloc_ids[1]);
    }
    for (const auto& unactivated : report_unactivated(plant, ports)) {
        seen.add("unactivated.serial", text_of(unactivated.serial));
        XPON_SEE(unactivated, port);
        XPON_SEE(unactivated, password);
    }
}

void see_sessions(SeenValues& seen, const Plant& plant) {
    for (const auto& lease : report_dhcp_sessions(plant)) {
        XPON_SEE(lease, pon_port);
        XPON_SEE(lease, ont_id);
        seen.add("lease.mac", text_of(lease.mac));
        XPON_SEE(lease, service_id);
        XPON_SEE(lease, gem_port);
        XPON_SEE(lease, outer_vid);
        seen.add("lease.ip", text_of(lease.ip));
        XPON_SEE(lease, life_time_msec);
        seen.add("lease.ont_serial", text_of(lease.ont_serial));
    }
    for (const auto& pppoe : report_pppoe_sessions(plant)) {
        XPON_SEE(pppoe, pon_port);
        XPON_SEE(pppoe, ont_id);
        XPON_SEE(pppoe, gem_port);
        XPON_SEE(pppoe, session_id);
        seen.add("pppoe.is_blocked", pppoe.session_id == 0);
        seen.add("pppoe.ont_serial", text_of(pppoe.ont_serial));
        XPON_SEE(pppoe, duration_sec);
        XPON_SEE(pppoe, unblock_rest_sec);
        seen.add("pppoe.client_mac", text_of(pppoe.client_mac));
    }
}

void see_groups(SeenValues& seen, const Plant& plant) {
    seen.add("snooping.bits", text_of(report_snooping_vlans(plant).bits));
    for (const auto& group : report_igmp_groups(plant)) {
        seen.add("group.address", text_of(group.address));
        XPON_SEE(group, is_in_deletion_queue);
        seen.add("group.filter_mode", static_cast<unsigned>(group.filter_mode));
        XPON_SEE(group, vlan);
        XPON_SEE(group, source_count);
        for (const auto& source : std::span(group.sources, group.source_count)) {
            seen.add("source.ip", text_of(source.ip));
            seen.add("source.filter_mode", static_cast<unsigned>(source.filter_mode));
        }
        XPON_SEE(group, port_count);
        for (const auto& port : std::span(group.ports, group.port_count)) {
            seen.add("member.kind", static_cast<unsigned>(port.kind));
            XPON_SEE(port, number);
            XPON_SEE(port, is_static);
            XPON_SEE(port, expires_sec);
        }
    }
}

void see_addresses(SeenValues& seen, const Plant& plant) {
    for (const auto& address : report_mac_table(plant)) {
        seen.add("address.mac", text_of(address.mac));
        seen.add("address.kind", static_cast<unsigned>(address.kind));
        XPON_SEE(address, number);
        XPON_SEE(address, svid);
        XPON_SEE(address, cvid);
        XPON_SEE(address, uvid);
        XPON_SEE(address, ont_id);
        XPON_SEE(address, gem);
        seen.add("address.type", static_cast<unsigned>(address.type));
    }
}

#undef XPON_SEE

/// A record as the words it is made of.
template <class Word, class Record>
std::vector<Word> words_of(const Record& record) {
    std::vector<Word> words(sizeof record / sizeof(Word));
    std::memcpy(words.data(), &record, words.size() * sizeof(Word));
    return words;
}

/// A record, or a part of one, that consists of arrays with a value per instance.
template <class Arrays>
void see_arrays(SeenValues& seen, const std::string& name, const Arrays& arrays, std::size_t offset,
                std::size_t arrays_count, std::size_t count) {
    const auto words = words_of<std::uint32_t>(arrays);
    for (std::size_t array = 0; array < arrays_count; ++array) {
        for (std::size_t instance = 0; instance < count; ++instance) {
            seen.add(fmt::format("{}[{}]", name, array),
                     words.at(offset / 4 + array * max_counter_instances + instance));
        }
    }
}

template <class Record>
void see_history(SeenValues& seen, const std::string& name, const Record& record) {
    constexpr auto offset = offsetof(Record, finished_intervals);
    see_arrays(seen, name, record, offset, (sizeof record - offset) / sizeof(Ont_instance_values), record.count);
    seen.add(name + ".count", record.count);
}

template <class Group>
void see_group(SeenValues& seen, const std::string& name, const Group& group) {
    seen.add(name + ".valid", group.valid);
    const auto words = words_of<std::uint32_t>(group);
    for (std::size_t word = 1; group.valid != 0 && word < words.size(); ++word) {
        seen.add(fmt::format("{}[{}]", name, word), words[word]);
    }
}

template <class Record>
void see_long_words(SeenValues& seen, const std::string& name, const Record& record) {
    const auto words = words_of<std::uint64_t>(record);
    for (std::size_t word = 0; word < words.size(); ++word) {
        seen.add(fmt::format("{}[{}]", name, word), words[word]);
    }
}

void see_services(SeenValues& seen, const Plant& plant, std::uint16_t index) {
    const auto gem = report_gem_port_pm(plant, index);
    see_arrays(seen, "gem", gem, offsetof(Ont_gem_port_pm, finished_intervals), 7, gem.count);
    see_group(seen, "gem.mc", gem.mc);
    see_group(seen, "gem.bc", gem.bc);
    seen.add("gem.number", gem.number[0]);
    const auto nctp = report_gem_port_nctp_pm(plant, index);
    see_arrays(seen, "nctp.downstream", nctp.downstream, 0, 3, nctp.count);
    see_arrays(seen, "nctp.upstream", nctp.upstream, 0, 3, nctp.count);
    see_group(seen, "nctp.mc", nctp.mc);
    see_group(seen, "nctp.bc", nctp.bc);
    const auto gal = report_gal_eth_pm(plant, index);
    see_arrays(seen, "gal", gal, offsetof(Ont_gal_eth_pm, finished_intervals), 2, gal.count);
    see_group(seen, "gal.mc", gal.mc);
    see_group(seen, "gal.bc", gal.bc);
}

void see_counters(SeenValues& seen, const Plant& plant) {
    for (const auto& [index, settings] : plant.configuration().onts) {
        see_services(seen, plant, index);
        see_history(seen, "eth", report_eth_pm(plant, index));
        see_history(seen, "eth_2", report_eth_pm_2(plant, index));
        see_history(seen, "eth_3", report_eth_pm_3(plant, index));
        see_history(seen, "fec", report_fec_pm(plant, index));
        const auto extended = report_eth_frame_ext_pm(plant, index);
        see_arrays(seen, "ext.upstream", extended.upstream, 0, 15, extended.count);
        see_arrays(seen, "ext.downstream", extended.downstream, 0, 15, extended.count);
        see_group(seen, "ext.upstream.veip", extended.upstream.veip);
        see_group(seen, "ext.downstream.veip", extended.downstream.veip);
        const auto gem_ports = report_olt_gem_ports(plant, index);
        for (const auto& entry : std::span(gem_ports.entries, gem_ports.count)) {
            see_long_words(seen, "olt.gem", entry);
        }
        see_long_words(seen, "olt.pon", report_olt_pon(plant, index));
    }
}

TEST(NamedPlants, LeaveNoFieldAtOneValue) {
    SeenValues seen;
    const test::TemporaryOltRoot root;
    for (const auto& named : named_plants()) {
        const PlantParameters parameters{.plant = &named, .size = named.size};
        auto configuration = subscribers_of(parameters, named.size.configured);
        configuration.front[1].is_multicast_router = true;
        configuration.management_vlan = 4000;
        for (auto& [index, settings] : configuration.onts) {
            if (index % 5 == 0) {
                settings.services = {{.number = 3, .broadcast_downstream = false}};
            } else if (index % 5 == 1) {
                settings.services = triple_play();
            }
        }
        Plant plant(parameters, configuration);
        plant.advance(named.uptime);
        see_environment(seen, report_environment(plant));
        const Firmware firmware(
            {.board = named.board, .is_spoilt = [&](unsigned slot) { return is_slot_spoilt(plant, slot); }},
            std::nullopt);
        see_facts(seen, report_device_facts(plant, firmware.slots(), 1));
        see_ports(seen, plant);
        see_onts(seen, plant);
        see_counters(seen, plant);
        plant.advance(named.uptime + std::chrono::minutes(15));
        see_counters(seen, plant);
        see_sessions(seen, plant);
        see_addresses(seen, plant);
        // Groups are in the deletion queue for two seconds only.
        for (int look = 0; look < 30; ++look) {
            plant.advance(plant.now() + std::chrono::seconds(2));
            see_groups(seen, plant);
        }
    }
    EXPECT_THAT(seen.constant_fields(), testing::IsEmpty());
}

TEST(NamedPlants, HaveFaultsThatExist) {
    for (const auto& named : named_plants()) {
        for (const auto& fault : named.faults) {
            std::string complaint;
            EXPECT_TRUE(parse_target(rule_of(fault.kind), fault.target, complaint)) << named.name << ": " << complaint;
        }
        const PlantParameters parameters{.plant = &named, .size = named.size};
        EXPECT_EQ(Plant(parameters, {}).faults().all().size(), named.faults.size());
    }
}

} // namespace
} // namespace xpon::simulator
