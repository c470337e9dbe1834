#pragma once

#include "simulator/plant/dhcp_sessions.hpp"
#include "simulator/plant/igmp_groups.hpp"
#include "simulator/plant/mac_table.hpp"
#include "simulator/plant/plant.hpp"
#include "simulator/plant/pppoe_sessions.hpp"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::simulator {

/// Services as they are sold: two for data, television, voice.
inline std::vector<ServiceSettings> services_of(const OntPosition& ont) {
    using Profile = cfgdb::ProfileOntCrossConnect;
    return {
        {.number = 1, .termination = Profile::Termination::veip, .s_vid = 100, .pppoe_agent = true},
        {.number = 2,
         .type = Profile::ServiceType::iptv,
         .s_vid = 200,
         .multicast_vid = static_cast<std::uint16_t>(ont.ont % 2 == 1 ? 201 : 202),
         .igmp_snooping = true},
        {.number = 3,
         .type = Profile::ServiceType::voip,
         .termination = Profile::Termination::ip_host,
         .s_vid = 300,
         .dhcp_agent = true},
        {.number = 8,
         .uni_vid = 7,
         .s_vid = 500,
         .c_vid = static_cast<std::uint16_t>(ont.port * 200 + ont.ont),
         .dhcp_agent = true},
    };
}

/// The first `onts` ones of a plant, each where it is.
inline RunningConfiguration subscribers_of(const PlantParameters& parameters, unsigned onts) {
    RunningConfiguration configuration;
    for (unsigned nth = 0; nth < onts; ++nth) {
        const auto ont = make_ont(parameters, nth);
        const auto index = record_index_of(ont.position);
        configuration.onts[index] = {.index = index,
                                     .serial = ont.serial,
                                     .upstream_fec = nth % 3 != 0,
                                     .services = services_of(ont.position),
                                     .tconts = 3,
                                     .immediate_leave = false,
                                     .provision = 1};
    }
    return configuration;
}

/// A plant in service: ONTs 1/1, 2/1 and so on. The first ones have power with this seed, and ports 1 to 4 a link.
class SubscriberPlant : public testing::Test {
protected:
    explicit SubscriberPlant(unsigned onts = 2) : plant(parameters(onts), subscribers_of(parameters(onts), onts)) {
        pass(std::chrono::minutes(5));
    }
    static PlantParameters parameters(unsigned onts) {
        return {.plant = find_plant("demo"), .size = {.onts = onts, .configured = onts}, .seed = 1};
    }
    void pass(PlantTime time) {
        plant.advance(plant.now() + time);
    }
    void configure(const std::function<void(RunningConfiguration&)>& edit) {
        auto configuration = plant.configuration();
        edit(configuration);
        plant.configure(configuration);
    }
    void set_front_ports(bool enabled) {
        configure([&](auto& configuration) {
            for (auto& port : configuration.front) {
                port.enabled = enabled;
            }
        });
    }
    static FaultTarget target(const char* kind, const char* text) {
        std::string complaint;
        return parse_target(*find_fault(kind), text, complaint).value();
    }
    void set_fault(const char* kind, const char* text, double value = 0) {
        plant.set_fault({.kind = find_fault(kind)->kind, .target = target(kind, text), .value = value});
    }
    void clear_fault(const char* kind, const char* text) {
        ASSERT_TRUE(plant.clear_fault(find_fault(kind)->kind, target(kind, text)));
    }

    Plant plant;
};

/// The entries of an ONT of the first PON port.
template <class Entry>
std::vector<Entry> of_first_ont(const std::vector<Entry>& entries, unsigned port = 1) {
    std::vector<Entry> own;
    for (const auto& entry : entries) {
        if (entry.pon_port == port && entry.ont_id == 1) {
            own.push_back(entry);
        }
    }
    return own;
}

} // namespace xpon::simulator
