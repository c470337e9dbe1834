#include "tests/unit/simulator/reports/ont_counters_fixture.hpp"
#include "xpon/peer_side/payload.hpp"

#include <array>
#include <map>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

/// The values of one instance of ME 296, or of a direction of ME 334: "Finished intervals", drops, octets, packets,
/// broadcasts, multicasts, three kinds of bad ones, and the six bins.
using EthernetValues = std::array<std::uint32_t, 15>;

/// From a record, or a part of one, whose arrays begin at `offset`.
template <class Arrays>
EthernetValues values_of(const Arrays& arrays, std::size_t offset, unsigned instance) {
    EthernetValues values{};
    for (std::size_t nth = 0; nth < values.size(); ++nth) {
        const auto* const bytes = reinterpret_cast<const std::byte*>(&arrays) + offset;
        std::memcpy(&values.at(nth), bytes + (nth * max_counter_instances + instance) * 4, 4);
    }
    return values;
}

EthernetValues values_of(const Ont_eth_frame_ext_pm::Veip& veip) {
    EthernetValues values{};
    static_assert(sizeof veip == 4 + sizeof values);
    std::memcpy(values.data(), &veip.finished_intervals, sizeof values);
    return values;
}

/// `bad_packets`: those of the bad ones that are packets all the same.
void expect_sound(const EthernetValues& values, std::uint32_t bad_packets) {
    const auto [finished, drops, octets, packets, broadcasts, multicasts, bad_1, bad_2, bad_3, b1, b2, b3, b4, b5, b6] =
        values;
    EXPECT_EQ(packets, b1 + b2 + b3 + b4 + b5 + b6 + bad_packets);
    EXPECT_EQ(octets, b1 * 64 + b2 * 100 + b3 * 200 + b4 * 400 + b5 * 800 + b6 * 1400); // of its low 32 bits
    EXPECT_LE(broadcasts + multicasts, packets);
}

void expect_sound(const EthernetValues& extended) {
    expect_sound(extended, extended[7] + extended[8]);
}

void expect_sound(const Ont_fec_pm_counters& fec) {
    ASSERT_EQ(fec.count, 1);
    EXPECT_GE(fec.total_code_words[0], fec.corrected_code_words[0] + fec.uncorrectable_code_words[0]);
    EXPECT_GE(fec.corrected_bytes[0], fec.corrected_code_words[0]);
    EXPECT_LE(fec.fec_seconds[0], 900U);
    EXPECT_LE(fec.fec_seconds[0], fec.corrected_code_words[0] + fec.uncorrectable_code_words[0] + 1);
}

void expect_sound(const Ont__get_pon_counters_response& pon, const Ont__get_gem_port_counters_response& gem_ports) {
    std::uint64_t rx = 0;
    std::uint64_t tx = 0;
    for (const auto& port : std::span(gem_ports.entries, gem_ports.count)) {
        rx += port.rx_bytes;
        tx += port.tx_bytes;
    }
    EXPECT_GE(pon.rx_bytes, rx);
    EXPECT_GE(pon.tx_bytes, tx);
    EXPECT_GE(pon.fec_codewords, pon.fec_codewords_corrected + pon.fec_codewords_uncorrected);
    EXPECT_GE(pon.fec_corrected_symbols, pon.fec_codewords_corrected);
    EXPECT_GE(pon.fec_corrected_units, pon.fec_corrected_symbols);
}

void expect_all_sound(const Plant& plant, std::uint16_t index) {
    const auto history = report_eth_pm_3(plant, index);
    const auto extended = report_eth_frame_ext_pm(plant, index);
    const auto& model = *plant.ont_configured_as(index)->hardware->model;
    EXPECT_EQ(history.count, model.ethernet_ports);
    EXPECT_EQ(extended.count, model.ethernet_ports);
    EXPECT_EQ(extended.upstream.veip.valid != 0, model.has_router);
    for (unsigned port = 0; port < history.count; ++port) {
        const auto values = values_of(history, offsetof(Ont_eth_pm_history_data_3, finished_intervals), port);
        expect_sound(values, history.undersize_packets[port]);
        expect_sound(values_of(extended.upstream, 0, port));
        expect_sound(values_of(extended.downstream, 0, port));
    }
    expect_sound(values_of(extended.upstream.veip));
    expect_sound(values_of(extended.downstream.veip));
    expect_sound(report_fec_pm(plant, index));
    expect_sound(report_olt_pon(plant, index), report_olt_gem_ports(plant, index));
}

Plant make_plant(std::uint64_t seed) {
    const auto demo = parameters(64, "demo", seed);
    return {demo, configured(demo, 64)};
}

/// ONT 1/1, and some on other ports and of other models.
std::vector<std::uint16_t> some_onts(const Plant& plant) {
    std::vector<std::uint16_t> onts;
    for (const auto index : std::initializer_list<std::uint16_t>{0, 1, 256, 513, 770}) {
        if (const auto ont = plant.ont_configured_as(index); ont && ont->point.state == ont_operational) {
            onts.push_back(index);
        }
    }
    return onts;
}

TEST(OntCounters, HoldTogetherWheneverTheyAreRead) {
    for (const std::uint64_t seed : {1, 2, 3}) {
        for (const PlantTime step : {PlantTime(1ms), PlantTime(37s), PlantTime(16min + 1ms), PlantTime(25h)}) {
            auto plant = make_plant(seed);
            plant.set_fault(fault("ont_attenuation", "1/2", 5));
            plant.advance(3min + seed * 7h);
            const auto onts = some_onts(plant);
            ASSERT_GE(onts.size(), 3U);
            std::map<std::uint16_t, std::vector<std::uint64_t>> last;
            for (int nth = 0; nth < 40; ++nth) {
                for (const auto index : onts) {
                    expect_all_sound(plant, index);
                    auto counters = counters_of(plant, index);
                    EXPECT_TRUE(none_fell(last[index], counters)) << index << " step " << step.count();
                    last[index] = std::move(counters);
                }
                plant.advance(plant.now() + step);
            }
        }
    }
}

/// What an ONT said over all of its intervals.
struct Said {
    std::uint64_t received = 0;
    std::uint64_t transmitted = 0;
};

void add_interval(std::map<unsigned, Said>& said, const Plant& plant, std::uint16_t index) {
    const auto frames = report_gem_port_nctp_pm(plant, index);
    const auto losses = report_gem_port_pm(plant, index);
    for (unsigned place = 0; place < frames.count; ++place) {
        auto& service = said[frames.number[place]];
        service.received += frames.downstream.received_gem_frames[place] + losses.lost_packets[place];
        service.transmitted += frames.upstream.transmitted_gem_frames[place];
        EXPECT_EQ(losses.received_packets[place], frames.downstream.received_gem_frames[place]);
    }
    said[4094].received += frames.mc.received_gem_frames + losses.mc.lost_packets;
    said[4095].received += frames.bc.received_gem_frames + losses.bc.lost_packets;
}

TEST(OntCounters, OfTheOntAddUpToThoseOfTheOlt) {
    for (const std::uint64_t seed : {1, 2}) {
        auto plant = make_plant(seed);
        plant.advance(3min);
        const auto onts = some_onts(plant);
        ASSERT_GE(onts.size(), 3U);
        std::multimap<PlantTime, std::uint16_t> ends;
        for (const auto index : onts) {
            for (int nth = 1; nth <= 20; ++nth) {
                ends.emplace(plant.ont_configured_as(index)->point.since + nth * interval, index);
            }
        }
        std::map<std::uint16_t, std::map<unsigned, Said>> said;
        std::uint64_t lost = 0;
        std::uint64_t lost_up = 0;
        for (const auto& [end, index] : ends) {
            if (plant.now() < 2h && end > 2h) {
                // Half of the time on a bad line, with losses; it turns bad, and better, within an interval.
                plant.set_fault(barely_lit(plant));
            }
            plant.advance(end);
            add_interval(said[index], plant, index);
            lost += report_gem_port_pm(plant, index).lost_packets[0];
            const auto gem_ports = report_olt_gem_ports(plant, index);
            for (const auto& port : std::span(gem_ports.entries, gem_ports.count)) {
                const unsigned key = port.group == gem_port_unicast ? (port.gem_port - 512U) % 8 + 1 : port.gem_port;
                EXPECT_EQ(port.tx_packets, said[index][key].received) << index << " GEM port " << port.gem_port;
                // A good line loses hardly any frame, the bad one some.
                EXPECT_LE(port.rx_packets, said[index][key].transmitted) << index << " GEM port " << port.gem_port;
                EXPECT_GE(port.rx_packets + (index == watched ? said[index][key].transmitted / 20 : 3),
                          said[index][key].transmitted)
                    << index << " GEM port " << port.gem_port;
                lost_up += said[index][key].transmitted - port.rx_packets;
            }
        }
        EXPECT_GT(lost, 0U);
        EXPECT_GT(lost_up, 0U);
    }
}

TEST_F(OntCountersTest, FinishOneIntervalAfterTheOther) {
    EXPECT_EQ(report_eth_pm(plant, watched).finished_intervals[0], 0U);
    EXPECT_EQ(report_gem_port_nctp_pm(plant, watched).downstream.received_gem_frames[0], 0U);
    finish_interval();
    const auto first = report_gem_port_nctp_pm(plant, watched);
    EXPECT_EQ(first.downstream.finished_intervals[0], 1U);
    EXPECT_GT(first.downstream.received_gem_frames[0], 1000U);
    pass(interval - 1ms);
    EXPECT_EQ(peer_side::record_payload(report_gem_port_nctp_pm(plant, watched)), peer_side::record_payload(first));
    pass(1ms);
    EXPECT_EQ(report_gem_port_nctp_pm(plant, watched).upstream.finished_intervals[0], 2U);
    pass(254 * interval);
    EXPECT_EQ(report_fec_pm(plant, watched).finished_intervals[0], 0U);
    EXPECT_EQ(report_gal_eth_pm(plant, watched).bc.finished_intervals, 0U);
    EXPECT_GT(report_fec_pm(plant, watched).total_code_words[0], 0U);
}

} // namespace
} // namespace xpon::simulator
