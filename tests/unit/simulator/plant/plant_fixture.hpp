#pragma once

#include "simulator/plant/plant.hpp"
#include "simulator/plants/named_plants.hpp"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::simulator {

/// Internet to the router, television at an Ethernet port, telephone and management: as the factory's template has it.
inline std::vector<ServiceSettings> triple_play(const OntPosition& /*ont*/ = {}) {
    using enum cfgdb::ProfileOntCrossConnect::Termination;
    using enum cfgdb::ProfileOntCrossConnect::ServiceType;
    return {
        {.number = 1, .termination = veip, .s_vid = 100, .pppoe_agent = true, .upstream_kbps = 1024000},
        {.number = 2,
         .tcont = 1,
         .type = iptv,
         .uni_ports = 0b10,
         .s_vid = 200,
         .multicast_vid = 201,
         .upstream_kbps = 1244160},
        {.number = 3,
         .tcont = 2,
         .type = voip,
         .termination = ip_host,
         .s_vid = 300,
         .dhcp_agent = true,
         .upstream_kbps = 512},
        {.number = 4,
         .tcont = 3,
         .type = management,
         .termination = ip_host,
         .s_vid = 400,
         .dhcp_agent = true,
         .upstream_kbps = 256},
    };
}

/// What every table of subscribers shows: two services for data, television in one of two VLANs, voice.
inline std::vector<ServiceSettings> subscriber_services(const OntPosition& ont) {
    auto services = triple_play();
    services[1].multicast_vid = static_cast<std::uint16_t>(ont.ont % 2 == 1 ? 201 : 202);
    services[1].igmp_snooping = true;
    services[3] = {.number = 8,
                   .uni_vid = 7,
                   .s_vid = 500,
                   .c_vid = static_cast<std::uint16_t>(ont.port * 200 + ont.ont),
                   .dhcp_agent = true};
    return services;
}

inline PlantParameters parameters(unsigned onts, std::string_view plant = "demo", std::uint64_t seed = 1) {
    return {.plant = find_plant(plant), .size = {.onts = onts, .configured = onts}, .seed = seed};
}

/// The first `onts` ones of a plant, each where it is.
inline RunningConfiguration configured(const PlantParameters& parameters, unsigned onts,
                                       decltype(triple_play)& services = triple_play) {
    RunningConfiguration configuration;
    for (unsigned nth = 0; nth < onts; ++nth) {
        const auto ont = make_ont(parameters, nth);
        const auto index = record_index_of(ont.position);
        configuration.onts[index] = {.index = index,
                                     .serial = ont.serial,
                                     .upstream_fec = nth % 2 == 0,
                                     .services = services(ont.position),
                                     .tconts = 4,
                                     .immediate_leave = false,
                                     .provision = 1};
    }
    return configuration;
}

inline Fault fault(const char* kind, const char* target, double value = 0) {
    std::string complaint;
    const auto& rule = *find_fault(kind);
    return {.kind = rule.kind, .target = parse_target(rule, target, complaint).value(), .value = value};
}

/// What happens to a plant, alone or with its subscribers.
class PlantEvents : public testing::Test {
protected:
    [[nodiscard]] virtual const Plant& present() const = 0;
    virtual void advance(PlantTime now) = 0;
    virtual void happen(const std::function<void(Plant&)>& event) = 0;

    void pass(PlantTime time) {
        advance(present().now() + time);
    }
    void configure(const std::function<void(RunningConfiguration&)>& edit) {
        auto configuration = present().configuration();
        edit(configuration);
        happen([&](Plant& plant) { plant.configure(configuration); });
    }
    void set_front_ports(bool enabled) {
        configure([&](auto& configuration) {
            for (auto& port : configuration.front) {
                port.enabled = enabled;
            }
        });
    }
    void set_fault(const Fault& fault) {
        happen([&](Plant& plant) { plant.set_fault(fault); });
    }
    void set_fault(const char* kind, const char* target, double value = 0) {
        set_fault(fault(kind, target, value));
    }
    void clear_fault(const char* kind, const char* target) {
        const auto cleared = fault(kind, target);
        happen([&](Plant& plant) { ASSERT_TRUE(plant.clear_fault(cleared.kind, cleared.target)); });
    }
};

/// A plant in simulated time. With seed 1, the first ONTs have power, and front ports 1 to 4 a link.
class PlantTest : public PlantEvents {
protected:
    explicit PlantTest(unsigned onts) : plant(parameters(onts), configured(parameters(onts), onts)) {
        plant.advance(std::chrono::minutes(5));
    }

    [[nodiscard]] const Plant& present() const override {
        return plant;
    }
    void advance(PlantTime now) override {
        plant.advance(now);
    }
    void happen(const std::function<void(Plant&)>& event) override {
        event(plant);
    }

    /// Of ONT 1/1.
    [[nodiscard]] std::string state() const {
        const auto state = plant.onts().front().point.state;
        return state == ont_gone ? "GONE" : ont_state_to_str(state);
    }
    /// Passes time until ONT 1/1 is in the state.
    void await(std::string_view awaited) {
        while (state() != awaited) {
            pass(std::chrono::milliseconds(50));
        }
    }

    Plant plant;
};

} // namespace xpon::simulator
