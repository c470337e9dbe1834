#include "simulator/plant/counter_report.hpp"
#include "simulator/plant/plant.hpp"
#include "tests/unit/simulator/triple_play.hpp"
#include "xpon/ipc/payload.hpp"

#include <array>
#include <functional>
#include <map>
#include <vector>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using ServiceType = cfgdb::ProfileOntCrossConnect::ServiceType;

constexpr PlantTime interval = 15min;
/// Of the ONTs 1/1 to 1/4 of the plants here, all of which have power with seeds 1 and 2.
constexpr std::uint16_t watched = 0;

RunningConfiguration configured(unsigned onts) {
    RunningConfiguration configuration;
    for (unsigned nth = 0; nth < onts; ++nth) {
        const auto index = record_index_of(position_of(nth));
        configuration.onts[index] = {.index = index,
                                     .serial = serial_of(position_of(nth)),
                                     .upstream_fec = nth % 2 == 0,
                                     .services = triple_play(),
                                     .tconts = 4,
                                     .provision = 1};
    }
    return configuration;
}

Plant make_plant(std::uint64_t seed = 1, unsigned onts = 64) {
    return {{.plant = find_plant("demo"), .size = {.onts = onts, .configured = onts}, .seed = seed}, configured(onts)};
}

Fault fault(FaultKind kind, const char* target, double value = 0) {
    std::string complaint;
    return {.kind = kind, .target = parse_target(rule_of(kind), target, complaint).value(), .value = value};
}

/// A line of ONT 1/1 so bad that it is just not cut.
Fault barely_lit(const Plant& plant) {
    const double left = plant.received_power_of(*plant.ont_configured_as(watched)) -
                        loss_of_signal_dbm(PonPortSettings::OdnClass::b_plus);
    return fault(FaultKind::ont_attenuation, "1/1", left - 0.5);
}

/// ONT 1/1 of a plant, in service.
class OntCountersTest : public testing::Test {
protected:
    OntCountersTest() {
        plant.advance(5min);
    }
    void pass(PlantTime time) {
        plant.advance(plant.now() + time);
    }
    /// To the end of the next interval of the watched ONT.
    void finish_interval() {
        const auto since = plant.ont_configured_as(watched)->point.since;
        plant.advance(since + ((plant.now() - since) / interval + 1) * interval);
    }
    void configure(const std::function<void(OntSettings&)>& edit) {
        auto configuration = plant.configuration();
        auto& settings = configuration.onts.at(watched);
        edit(settings);
        ++settings.provision;
        plant.configure(configuration);
    }
    [[nodiscard]] Ont__get_pon_counters_response pon() const {
        return report_olt_pon(plant, watched);
    }
    [[nodiscard]] Ont__get_gem_port_counters_response gem_ports() const {
        return report_olt_gem_ports(plant, watched);
    }

    Plant plant = make_plant();
};

/// Octets and packets of six bins.
struct Sums {
    std::uint64_t packets = 0;
    std::uint64_t octets = 0;
};

Sums sums_of(const std::array<std::uint32_t, 6>& bins) {
    Sums sums;
    for (std::size_t bin = 0; bin < bins.size(); ++bin) {
        sums.packets += bins.at(bin);
        sums.octets += std::uint64_t{bins.at(bin)} * frame_sizes.at(bin);
    }
    return sums;
}

void expect_sound(const Ont_eth_pm_history_data_3& record, unsigned port) {
    const auto sums = sums_of({record.packets_64_octets[port], record.packets_65_to_127_octets[port],
                               record.packets_128_to_255_octets[port], record.packets_256_to_511_octets[port],
                               record.packets_512_to_1023_octets[port], record.packets_1024_to_1518_octets[port]});
    EXPECT_EQ(record.packets[port], sums.packets + record.undersize_packets[port]);
    EXPECT_EQ(record.octets[port], sums.octets);
    EXPECT_LE(record.broadcast_packets[port] + record.multicast_packets[port], record.packets[port]);
}

void expect_sound(const Ont_eth_frame_ext_pm::Direction& record, unsigned port) {
    const auto sums = sums_of({record.frames_64_octets[port], record.frames_65_to_127_octets[port],
                               record.frames_128_to_255_octets[port], record.frames_256_to_511_octets[port],
                               record.frames_512_to_1023_octets[port], record.frames_1024_to_1518_octets[port]});
    EXPECT_EQ(record.frames[port], sums.packets + record.undersize_frames[port] + record.oversize_frames[port]);
    EXPECT_EQ(record.octets[port], static_cast<std::uint32_t>(sums.octets));
    EXPECT_LE(record.broadcast_frames[port] + record.multicast_frames[port], record.frames[port]);
}

void expect_sound(const Ont_eth_frame_ext_pm::Veip& veip) {
    const auto sums =
        sums_of({veip.frames_64_octets, veip.frames_65_to_127_octets, veip.frames_128_to_255_octets,
                 veip.frames_256_to_511_octets, veip.frames_512_to_1023_octets, veip.frames_1024_to_1518_octets});
    EXPECT_EQ(veip.frames, sums.packets + veip.undersize_frames + veip.oversize_frames);
    EXPECT_EQ(veip.octets, static_cast<std::uint32_t>(sums.octets));
    EXPECT_LE(veip.broadcast_frames + veip.multicast_frames, veip.frames);
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
        expect_sound(history, port);
        expect_sound(extended.upstream, port);
        expect_sound(extended.downstream, port);
    }
    expect_sound(extended.upstream.veip);
    expect_sound(extended.downstream.veip);
    expect_sound(report_fec_pm(plant, index));
    expect_sound(report_olt_pon(plant, index), report_olt_gem_ports(plant, index));
}

/// All OLT-side counters of an ONT in one order.
std::vector<std::uint64_t> counters_of(const Plant& plant, std::uint16_t index) {
    const auto pon = report_olt_pon(plant, index);
    std::vector<std::uint64_t> counters(sizeof pon / 8);
    std::memcpy(counters.data(), &pon, sizeof pon);
    const auto gem_ports = report_olt_gem_ports(plant, index);
    for (const auto& port : std::span(gem_ports.entries, gem_ports.count)) {
        counters.insert(counters.end(), {port.rx_bytes, port.rx_packets, port.tx_bytes, port.tx_packets});
    }
    return counters;
}

testing::AssertionResult none_fell(const std::vector<std::uint64_t>& before, const std::vector<std::uint64_t>& after) {
    for (std::size_t nth = 0; nth < std::min(before.size(), after.size()); ++nth) {
        if (after[nth] < before[nth]) {
            return testing::AssertionFailure() << nth << ": " << before[nth] << " to " << after[nth];
        }
    }
    return testing::AssertionSuccess();
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
            plant.set_fault(fault(FaultKind::ont_attenuation, "1/2", 5));
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
                EXPECT_EQ(port.rx_packets, said[index][key].transmitted) << index << " GEM port " << port.gem_port;
            }
        }
        EXPECT_GT(lost, 0U);
    }
}

TEST_F(OntCountersTest, GrowAsFastAsTheirServicesTalk) {
    // Mean rates in kbit/s, down and up, by service, then of multicast and broadcast. A day's mean is 0.8 of them.
    constexpr std::array<std::pair<double, double>, 6> means{
        {{4000, 600}, {16, 4}, {90 * 0.05, 90 * 0.05}, {2, 2}, {6000 * 1.5, 0}, {8, 0}}};
    const auto before = gem_ports();
    pass(240h);
    const auto after = gem_ports();
    ASSERT_EQ(after.count, means.size());
    EXPECT_EQ(after.entries[0].gem_port, 512);
    for (std::size_t nth = 0; nth < means.size(); ++nth) {
        const auto kbps = [](std::uint64_t octets) { return static_cast<double>(octets) * 8 / 1000 / (240 * 3600); };
        const double down = kbps(after.entries[nth].tx_bytes - before.entries[nth].tx_bytes);
        const double up = kbps(after.entries[nth].rx_bytes - before.entries[nth].rx_bytes);
        EXPECT_NEAR(down, means.at(nth).first * 0.8, means.at(nth).first * 0.3) << nth;
        EXPECT_NEAR(up, means.at(nth).second * 0.8, means.at(nth).second * 0.05) << nth;
    }
}

struct Limit {
    const char* name;
    std::function<void(OntSettings&)> set;
    double down_kbps; ///< of all GEM ports
    double up_kbps;
};

TEST_F(OntCountersTest, StayWithinEveryLimit) {
    const Limit limits[] = {
        {"service", [](auto& ont) { ont.services = {{.number = 1, .downstream_kbps = 512, .upstream_kbps = 128}}; },
         512 + 12, 128},
        {"ONT", [](auto& ont) { ont.downstream_kbps = 1000, ont.upstream_kbps = 200; }, 1000, 200},
        {"T-CONT",
         [](auto& ont) {
             for (auto& service : ont.services) {
                 service.tcont = 0;
                 service.upstream_kbps = 64;
             }
         },
         1e6, 64},
    };
    for (const auto& [name, set, down_kbps, up_kbps] : limits) {
        plant = make_plant();
        plant.advance(5min);
        configure(set);
        pass(10s);
        const auto before = pon();
        pass(20h);
        const auto after = pon();
        const double kbit_per_octet_s = 8.0 / 1000 / (20 * 3600);
        const double down = static_cast<double>(after.tx_bytes - before.tx_bytes) * kbit_per_octet_s;
        const double up = static_cast<double>(after.rx_bytes - before.rx_bytes) * kbit_per_octet_s;
        EXPECT_LE(down, down_kbps + 1) << name;
        EXPECT_LE(up, up_kbps + 1) << name; // with the management channel
        EXPECT_GE(up, up_kbps * 0.4) << name;
        // What found no room is seen at the user's side.
        const auto users = report_eth_pm_3(plant, watched);
        EXPECT_GT(users.drop_events[0] + report_eth_frame_ext_pm(plant, watched).upstream.veip.drop_events, 1000U)
            << name;
    }
}

TEST_F(OntCountersTest, GoOnOverConfiguringAndBeginAnewWithTheOnt) {
    pass(3h);
    const auto before = counters_of(plant, watched);
    configure([](auto& ont) { ont.services[0].type = ServiceType::voip; });
    EXPECT_EQ(counters_of(plant, watched), std::vector<std::uint64_t>(19)); // on its way: nothing to read
    pass(10s);
    const auto after = counters_of(plant, watched);
    EXPECT_TRUE(none_fell(before, after));
    EXPECT_EQ(report_gem_port_pm(plant, watched).finished_intervals[0], 0U);
    // Not one octet was lost or counted twice: in ten seconds no more than that.
    constexpr std::size_t tx_bytes = offsetof(Ont__get_pon_counters_response, tx_bytes) / 8;
    EXPECT_LT(after[tx_bytes], before[tx_bytes] + 10 * (18'100'000 + 6'000'000) / 8);

    for (const auto& [kind, target] : {std::pair(FaultKind::ont_los, "1"), {FaultKind::ont_dying_gasp, "1/1"}}) {
        pass(1h);
        ASSERT_GT(pon().tx_bytes, 1'000'000U);
        const auto cut = fault(kind, target);
        plant.set_fault(cut);
        pass(5s);
        plant.clear_fault(kind, cut.target);
        while (plant.ont_configured_as(watched)->point.state != ont_operational) {
            pass(50ms);
        }
        EXPECT_LT(pon().tx_bytes, 1'000'000U);
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
    EXPECT_EQ(ipc::record_payload(report_gem_port_nctp_pm(plant, watched)), ipc::record_payload(first));
    pass(1ms);
    EXPECT_EQ(report_gem_port_nctp_pm(plant, watched).upstream.finished_intervals[0], 2U);
    pass(254 * interval);
    EXPECT_EQ(report_fec_pm(plant, watched).finished_intervals[0], 0U);
    EXPECT_EQ(report_gal_eth_pm(plant, watched).bc.finished_intervals, 0U);
    EXPECT_GT(report_fec_pm(plant, watched).total_code_words[0], 0U);
}

TEST_F(OntCountersTest, ErrorsFollowTheLight) {
    struct Errors {
        std::uint64_t bip;
        std::uint64_t corrected; ///< at the ONT
        std::uint64_t lost;
    };
    const auto over_two_intervals = [&] {
        finish_interval();
        const auto before = pon();
        finish_interval();
        return Errors{pon().bip_errors - before.bip_errors, report_fec_pm(plant, watched).corrected_code_words[0],
                      report_gem_port_pm(plant, watched).lost_packets[0]};
    };
    const auto clean = over_two_intervals();
    const auto bad = barely_lit(plant);
    const auto just_before = counters_of(plant, watched);
    plant.set_fault(bad);
    EXPECT_EQ(counters_of(plant, watched), just_before); // what was counted does not change
    ASSERT_EQ(plant.ont_configured_as(watched)->point.state, ont_operational);
    const auto weak = over_two_intervals();
    EXPECT_GT(weak.bip, clean.bip + 100);
    EXPECT_GT(weak.corrected, clean.corrected + 1000);
    EXPECT_GE(weak.lost, clean.lost);
    plant.clear_fault(bad.kind, bad.target);
    const auto cured = over_two_intervals();
    EXPECT_LT(cured.bip, weak.bip / 10);
    EXPECT_LT(cured.corrected, weak.corrected / 10);
}

TEST_F(OntCountersTest, ARogueDisturbsItsNeighboursUntilItIsStopped) {
    const auto bip_errors = [&](PlantTime in) {
        const auto before = pon().bip_errors;
        pass(in);
        return pon().bip_errors - before;
    };
    EXPECT_LT(bip_errors(10s), 10U);
    const auto rogue = fault(FaultKind::ont_rogue, "1/3");
    plant.set_fault(rogue);
    EXPECT_GT(bip_errors(10s), 50U);
    EXPECT_LT(bip_errors(10s), 10U);
    plant.clear_fault(rogue.kind, rogue.target);

    auto configuration = plant.configuration();
    configuration.pon[0].detects_rogues = false;
    plant.configure(configuration);
    plant.set_fault(rogue);
    EXPECT_GT(bip_errors(10s), 50U);
    EXPECT_GT(bip_errors(10s), 50U);
    // Other ports hear nothing of it.
    EXPECT_LT(report_olt_pon(plant, 256).bip_errors, 50U);
}

TEST_F(OntCountersTest, FecIsCountedWhereItIsOn) {
    EXPECT_GT(pon().fec_codewords, 0U);
    configure([](auto& ont) { ont.upstream_fec = false; });
    pass(1min);
    const auto words = pon().fec_codewords;
    pass(1h);
    EXPECT_EQ(pon().fec_codewords, words);
    EXPECT_GT(report_fec_pm(plant, watched).total_code_words[0], 0U);
    auto configuration = plant.configuration();
    configuration.pon[0].downstream_fec = false;
    plant.configure(configuration);
    pass(1h);
    EXPECT_EQ(report_fec_pm(plant, watched).count, 1);
    EXPECT_EQ(report_fec_pm(plant, watched).total_code_words[0], 0U);
}

TEST_F(OntCountersTest, FramesOfAServiceAreDealtToItsPorts) {
    // The watched ONT takes the place of one with four ports.
    const auto four = [&] {
        for (const auto& ont : plant.onts()) {
            if (ont.hardware->model->ethernet_ports == 4 && ont.point.state == ont_operational) {
                return *ont.situation->configured;
            }
        }
        return std::uint16_t{0xffff};
    }();
    auto configuration = plant.configuration();
    configuration.onts.at(four).services = {{.number = 5, .uni_ports = 0b1011}};
    configuration.onts.at(four).provision = 2;
    plant.configure(configuration);
    pass(1min);
    const auto since = plant.ont_configured_as(four)->point.since;
    plant.advance(since + interval);
    const auto ports = report_eth_pm_3(plant, four);
    const auto frames = report_gem_port_nctp_pm(plant, four);
    ASSERT_EQ(ports.count, 4);
    ASSERT_EQ(frames.number[0], 5);
    EXPECT_EQ(ports.octets[0] + ports.octets[1] + ports.octets[2] + ports.octets[3],
              frames.upstream.transmitted_payload_bytes[0]);
    EXPECT_EQ(ports.octets[2], 0U);
    EXPECT_GT(ports.octets[3], frames.upstream.transmitted_payload_bytes[0] / 4);
}

std::vector<std::byte> everything(const Plant& plant) {
    std::vector<std::byte> bytes;
    const auto add = [&](const auto& record) {
        const auto part = ipc::record_payload(record);
        bytes.insert(bytes.end(), part.begin(), part.end());
    };
    for (std::uint16_t index = 0; index < 4096; index = static_cast<std::uint16_t>(index + 64)) {
        add(report_gem_port_pm(plant, index));
        add(report_gem_port_nctp_pm(plant, index));
        add(report_gal_eth_pm(plant, index));
        add(report_fec_pm(plant, index));
        add(report_eth_pm(plant, index));
        add(report_eth_pm_2(plant, index));
        add(report_eth_pm_3(plant, index));
        add(report_eth_frame_ext_pm(plant, index));
        add(report_olt_gem_ports(plant, index));
        add(report_olt_pon(plant, index));
    }
    return bytes;
}

TEST(OntCounters, AreTheSameForEqualHistories) {
    const auto play = [](std::uint64_t seed, bool asks_often) {
        auto plant = make_plant(seed);
        for (auto now = PlantTime{}; now < 4h; now += 211s) {
            plant.advance(now);
            if (now / 211s == 20) {
                plant.set_fault(fault(FaultKind::ont_attenuation, "1/1", 5));
                auto configuration = plant.configuration();
                configuration.onts.at(256).provision = 2;
                plant.configure(configuration);
            }
            if (asks_often) {
                everything(plant);
            }
        }
        return everything(plant);
    };
    const auto bytes = play(1, false);
    EXPECT_EQ(play(1, true), bytes);
    EXPECT_NE(play(2, false), bytes);
}

TEST_F(OntCountersTest, OfNobodyAreZero) {
    const auto is_zero = [](const auto& record) {
        const auto bytes = ipc::record_payload(record);
        return std::ranges::all_of(bytes, [](std::byte byte) { return byte == std::byte{}; });
    };
    const auto all_zero = [&](std::uint16_t index) {
        return is_zero(report_gem_port_pm(plant, index)) && is_zero(report_gem_port_nctp_pm(plant, index)) &&
               is_zero(report_gal_eth_pm(plant, index)) && is_zero(report_fec_pm(plant, index)) &&
               is_zero(report_eth_pm(plant, index)) && is_zero(report_eth_pm_2(plant, index)) &&
               is_zero(report_eth_pm_3(plant, index)) && is_zero(report_eth_frame_ext_pm(plant, index)) &&
               is_zero(report_olt_gem_ports(plant, index)) && is_zero(report_olt_pon(plant, index));
    };
    pass(1h);
    EXPECT_FALSE(all_zero(watched));
    EXPECT_TRUE(all_zero(4095)); // not configured
    const auto before = pon().tx_bytes;
    configure([](auto& ont) { ont.pm_collection = false; });
    EXPECT_TRUE(all_zero(watched));
    pass(1h);
    EXPECT_TRUE(all_zero(watched));
    // The OLT went on counting all the same.
    configure([](auto& ont) { ont.pm_collection = true; });
    pass(1min);
    EXPECT_GT(pon().tx_bytes, before + 1'000'000);
}

TEST_F(OntCountersTest, OfALineThatChangesAllTheTimeNeverFall) {
    std::vector<std::uint64_t> last;
    for (int nth = 0; nth < 200; ++nth) {
        plant.set_fault(fault(FaultKind::ont_attenuation, "1/1", nth % 7));
        pass(nth % 3 == 0 ? 0s : 40s);
        auto counters = counters_of(plant, watched);
        EXPECT_TRUE(none_fell(last, counters)) << nth;
        last = std::move(counters);
        expect_all_sound(plant, watched);
    }
    // Provided once, whatever happened since.
    EXPECT_LT(pon().rx_omci, 300U);
}

} // namespace
} // namespace xpon::simulator
