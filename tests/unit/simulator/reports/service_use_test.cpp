#include "tests/unit/simulator/reports/ont_counters_fixture.hpp"

#include <map>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

/// What the GEM ports of ONT 1/1 carried, by service; those shared with others as 4094 and 4095.
struct Carried {
    std::uint64_t up = 0;
    std::uint64_t down = 0;
};
using CarriedByPort = std::map<unsigned, Carried>;

class ServiceUseTest : public OntCountersTest {
protected:
    ServiceUseTest() {
        pass(1h);
        finish_interval();
    }

    [[nodiscard]] CarriedByPort at_olt() const {
        CarriedByPort carried;
        const auto record = report_olt_gem_ports(plant, watched);
        for (const auto& port : std::span(record.entries, record.count)) {
            carried[port.group == gem_port_unicast ? port.gem_port - 511U : port.gem_port] = {port.rx_packets,
                                                                                              port.tx_packets};
        }
        return carried;
    }
    /// In the last interval.
    [[nodiscard]] CarriedByPort at_ont() const {
        CarriedByPort carried;
        const auto record = report_gem_port_nctp_pm(plant, watched);
        for (unsigned place = 0; place < record.count; ++place) {
            carried[record.number[place]] = {record.upstream.transmitted_gem_frames[place],
                                             record.downstream.received_gem_frames[place]};
        }
        carried[4094].down = record.mc.received_gem_frames;
        carried[4095].down = record.bc.received_gem_frames;
        return carried;
    }
    /// In the next interval, in the midst of which something may happen, and which both sides see alike.
    CarriedByPort carried_in_interval(const std::function<void(Plant&)>& happen = {}) {
        const auto before = at_olt();
        if (happen) {
            pass(7min);
            happen(plant);
        }
        finish_interval();
        auto carried = at_ont();
        for (const auto& [port, sums] : at_olt()) {
            EXPECT_EQ(sums.up - before.at(port).up, carried[port].up) << port;
            EXPECT_EQ(sums.down - before.at(port).down, carried[port].down) << port;
        }
        return carried;
    }
    void drop_vlan(std::size_t vid) {
        configure([&](auto& configuration) {
            for (auto& port : configuration.front) {
                port.vlans.reset(vid);
            }
        });
    }
    void set_ports(bool enabled) {
        configure([&](auto& configuration) {
            auto& ont = configuration.onts.at(watched);
            ont.has_router = enabled;
            ont.user_ports.fill({.enabled = enabled});
        });
    }
};

TEST_F(ServiceUseTest, NothingFlowsWhereNobodyCanUseIt) {
    const struct {
        const char* name;
        std::function<void()> happen;
        std::vector<unsigned> still; ///< GEM ports that carry nothing down
        std::uint64_t most_retries;  ///< of each of them
    } cases[] = {
        {"uplinks pulled", [&] { set_front_ports(false); }, {1, 2, 3, 4, 4094, 4095}, 30 * 3},
        {"VLAN not carried", [&] { drop_vlan(300); }, {3}, 30},
        {"stream VLAN not carried", [&] { drop_vlan(201); }, {4094}, 0},
        {"session blocked", [&] { set_fault("pppoe_blocked", "1/1/1"); }, {1}, 30},
        {"hosts gone", [&] { set_ports(false); }, {1, 2, 4094}, 0},
    };
    const auto in_service = plant;
    for (const auto& [name, happen, still, most_retries] : cases) {
        SCOPED_TRACE(name);
        plant = in_service;
        happen();
        plant.advance(plant.now() + 1h + 1min); // leases have ended
        finish_interval();
        const auto carried = carried_in_interval();
        for (const auto& [port, sums] : carried) {
            const bool is_still = std::ranges::find(still, port) != still.end();
            EXPECT_EQ(sums.down == 0, is_still || port == 3) << port << " carried " << sums.down; // 3: no call
            EXPECT_TRUE(!is_still || (sums.up <= most_retries && (sums.up > 0 || most_retries == 0 || port > 8)))
                << port << " sent " << sums.up;
        }
        if (still.size() == 6) {
            set_front_ports(true);
            pass(3min);
            finish_interval();
            EXPECT_GT(at_ont()[1].down, 1000U);
        }
    }
}

TEST_F(ServiceUseTest, ServicesAreUsedAsTestersHaveIt) {
    constexpr OntPosition ont{.port = 1, .ont = 1};
    using Act = std::function<void(Plant&)>;
    const auto use = [&](TrafficProfile profile) {
        return Act([=](Plant& changed) { changed.set_profile(ont, 1, profile); });
    };
    const auto hold = [&](const std::optional<JoinedGroups>& groups) {
        return Act([=](Plant& changed) { changed.choose_groups(ont, 2, groups); });
    };
    const JoinedGroups five{.count = 5, .group = {3, 9, 27, 40, 63}};
    const struct {
        const char* name;
        Act start;
        Act stop;
        unsigned port;
        double least; ///< carried down, of what is usual
        double most;
    } cases[] = {
        {"idle", use(TrafficProfile::idle), use(TrafficProfile::usual), 1, 0.001, 0.05},
        {"evening", use(TrafficProfile::evening), use(TrafficProfile::usual), 1, 0.9, 5},
        {"speed test", use(TrafficProfile::speed_test), use(TrafficProfile::usual), 1, 100, 1000},
        {"groups left", hold(JoinedGroups{}), hold(std::nullopt), 4094, 0, 0},
        {"groups joined", hold(five), hold(std::nullopt), 4094, 1.5, 8},
    };
    auto usual = carried_in_interval();
    const auto in_service = plant;
    for (const auto& [name, start, stop, port, least, most] : cases) {
        SCOPED_TRACE(name);
        plant = in_service;
        start(plant);
        const auto share = [&](const CarriedByPort& carried) {
            return static_cast<double>(carried.at(port).down) / static_cast<double>(usual[port].down);
        };
        const auto started = share(carried_in_interval());
        EXPECT_TRUE(started >= least && started <= most) << started;
        const auto stopped = share(carried_in_interval(stop));
        EXPECT_TRUE(stopped > std::min(started, 0.1) && stopped < std::max(started, 3.0)) << stopped;
        const auto after = share(carried_in_interval());
        EXPECT_TRUE(after > 0.2 && after < 5) << after;
    }
}

TEST_F(ServiceUseTest, NoCounterFallsHoweverOftenTheUplinksGo) {
    auto before = counters_of(plant, watched);
    for (int nth = 0; nth < 1500; ++nth) {
        set_front_ports(nth % 2 == 1);
        pass(7s);
        auto after = counters_of(plant, watched);
        ASSERT_TRUE(none_fell(before, after)) << nth;
        before = std::move(after);
    }
}

TEST_F(ServiceUseTest, SharedGemPortsCarryTheSameToAll) {
    const auto broadcast_of = [&](std::uint16_t index) {
        const auto record = report_olt_gem_ports(plant, index);
        return record.count == 0 ? std::uint64_t{0} : record.entries[record.count - 1].tx_bytes;
    };
    std::map<std::uint16_t, std::uint64_t> before;
    for (const auto& [index, settings] : plant.configuration().onts) {
        before[index] = broadcast_of(index);
    }
    pass(17min);
    std::map<unsigned, std::uint64_t> of_port;
    for (const auto& [index, sum] : before) {
        if (sum != 0) {
            const auto grown = broadcast_of(index) - sum;
            EXPECT_EQ(of_port.try_emplace(place_of_record(index).port, grown).first->second, grown) << index;
        }
    }
    EXPECT_EQ(of_port.size(), 16U);
}

} // namespace
} // namespace xpon::simulator
