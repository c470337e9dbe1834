#include "simulator/plants/named_plants.hpp"
#include "simulator/reports/counter_report.hpp"
#include "tests/unit/simulator/plant/plant_fixture.hpp"

#include <cstddef>
#include <cstring>
#include <map>
#include <set>
#include <span>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace xpon::simulator {
namespace {

/// The values that each counter took, over all records of all plants.
using SeenValues = std::map<std::string, std::set<std::uint64_t>>;

/// The words of a record from an offset in octets up to another: the first of each `stride` of them, which are one
/// counter.
template <class Word = std::uint32_t>
void see_words(SeenValues& seen, const std::string& name, const auto& record, std::size_t from, std::size_t to,
               std::size_t stride = 1) {
    std::vector<Word> words((to - from) / sizeof(Word));
    std::memcpy(words.data(), reinterpret_cast<const std::byte*>(&record) + from, words.size() * sizeof(Word));
    for (std::size_t nth = 0; nth < words.size(); nth += stride) {
        seen[fmt::format("{} {}", name, nth / stride)].insert(words[nth]);
    }
}

template <class Group>
void see_group(SeenValues& seen, const std::string& name, const Group& group) {
    seen[name + " valid"].insert(group.valid);
    if (group.valid != 0) {
        see_words(seen, name, group, offsetof(Group, finished_intervals), sizeof group);
    }
}

/// The counters of the first instance, and of the groups.
template <class Record>
void see_record(SeenValues& seen, const std::string& name, const Record& record) {
    std::size_t end = sizeof record;
    if constexpr (requires { record.upstream; }) {
        see_record(seen, name + " upstream", record.upstream);
        see_record(seen, name + " downstream", record.downstream);
    }
    if constexpr (requires { record.mc; }) {
        see_group(seen, name + " multicast", record.mc);
        see_group(seen, name + " broadcast", record.bc);
        end = offsetof(Record, mc);
    } else if constexpr (requires { record.veip; }) {
        see_group(seen, name + " veip", record.veip);
        end = offsetof(Record, veip);
    }
    if constexpr (requires { record.finished_intervals; }) {
        see_words(seen, name, record, offsetof(Record, finished_intervals), end, max_counter_instances);
    }
}

void see_counters(SeenValues& seen, const Plant& plant) {
    for (const auto& [index, settings] : plant.configuration().onts) {
        see_record(seen, "gem port", report_gem_port_pm(plant, index));
        see_record(seen, "nctp", report_gem_port_nctp_pm(plant, index));
        see_record(seen, "gal", report_gal_eth_pm(plant, index));
        see_record(seen, "eth", report_eth_pm(plant, index));
        see_record(seen, "eth 2", report_eth_pm_2(plant, index));
        see_record(seen, "eth 3", report_eth_pm_3(plant, index));
        see_record(seen, "fec", report_fec_pm(plant, index));
        see_record(seen, "extended", report_eth_frame_ext_pm(plant, index));
        const auto gem_ports = report_olt_gem_ports(plant, index);
        for (const auto& entry : std::span(gem_ports.entries, gem_ports.count)) {
            see_words<std::uint64_t>(seen, "olt gem port", entry, 0, sizeof entry);
        }
        const auto pon = report_olt_pon(plant, index);
        see_words<std::uint64_t>(seen, "olt pon", pon, 0, sizeof pon);
    }
}

TEST(NamedPlants, LeaveNoCounterAtOneValue) {
    SeenValues seen;
    for (const auto& named : named_plants()) {
        const PlantParameters parameters{.plant = &named, .size = named.size()};
        auto configuration = configured(parameters, named.size().configured, subscriber_services);
        for (std::uint16_t index = 0; index < max_onts; ++index) {
            if (!configuration.onts.contains(index)) {
                continue;
            }
            auto& settings = configuration.onts.at(index);
            if (index % 5 == 0) {
                settings.services = {{.number = 3, .broadcast_downstream = false}};
            } else if (index % 5 == 1) {
                settings.services = triple_play();
            }
        }
        Plant plant(parameters, configuration);
        plant.advance(named.uptime);
        see_counters(seen, plant);
        plant.advance(named.uptime + std::chrono::minutes(15));
        see_counters(seen, plant);
    }
    for (const auto& [counter, values] : seen) {
        EXPECT_GT(values.size(), 1U) << counter << " = " << *values.begin();
    }
}

} // namespace
} // namespace xpon::simulator
