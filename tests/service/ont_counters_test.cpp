// Counters of ONTs: the whole answer of each kind, label by label, and records that claim too much.

#include "tests/service/monitoring_fixture.hpp"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <tuple>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

/// A kind of counters with its labels, between commas, in the order in which records hold the values.
struct Kind {
    const char* route;
    Ont_information_kind number;
    const char* labels;
};

constexpr Kind gem_port{"ont_side.gem_port_performance_monitoring", ont_information_gem_port_pm,
                        "Finished intervals,Lost packets,Misinserted packets,Received packets,Received blocks,"
                        "Transmitted blocks,Impaired blocks"};
constexpr Kind nctp{"ont_side.gem_port_nctp_performance_monitoring", ont_information_gem_port_nctp_pm,
                    "Finished intervals,Received GEM frames,Received payload bytes"};
constexpr const char* nctp_upstream_labels = "Finished intervals,Transmitted GEM frames,Transmitted payload bytes";
constexpr Kind ethernet{"ont_side.ethernet_performance_monitoring_history_data", ont_information_eth_pm_history_data,
                        "Finished intervals,Fcs errors,Excessive collision,Late collision,Frames too long,"
                        "Buffer overflows on receive,Buffer overflows on transmit,Single collision,"
                        "Multiple collisions,Sqe,Deferred transmission,Internal mac transmit error,"
                        "Carrier sense error,Alignment error,Internal mac receive error"};
constexpr Kind ethernet_2{"ont_side.ethernet_performance_monitoring_history_data_2", ont_information_ethernet_pm_2,
                          "Finished intervals,PPPoE filtered frame counters"};
constexpr Kind ethernet_3{"ont_side.ethernet_performance_monitoring_history_data_3",
                          ont_information_eth_pm_history_data_3,
                          "Finished intervals,Drop events,Octets,Packets,Broadcast packets,Multicast packets,"
                          "Undersize packets,Fragments,Jabbers,Packets 64 octets,Packets 65 to 127 octets,"
                          "Packets 128 to 255 octets,Packets 256 to 511 octets,Packets 512 to 1023 octets,"
                          "Packets 1024 to 1518 octets"};
constexpr Kind gal{"ont_side.gal_ethernet_performance_monitoring_history_data", ont_information_gal_eth_pm,
                   "Finished intervals,Discarded frames"};
constexpr Kind fec{"ont_side.fec_performance_monitoring_history_data", ont_information_fec_pm,
                   "Finished intervals,Corrected bytes,Corrected code words,Uncorrectable code words,"
                   "Total code words,FEC seconds"};
constexpr Kind frames{"ont_side.ethernet_frame_extended_performance_monitoring", ont_information_eth_frame_ext_pm,
                      "Finished intervals,Drop events,Octets,Frames,Broadcast frames,Multicast frames,"
                      "CRC errored frames,Undersize frames,Oversize frames,Frames 64 octets,Frames 65 to 127 octets,"
                      "Frames 128 to 255 octets,Frames 256 to 511 octets,Frames 512 to 1023 octets,"
                      "Frames 1024 to 1518 octets"};
constexpr Kind olt_gem_port{"olt_side.gem_port", ont_information_olt_gem_port, "Rx Bytes,Rx Packet,Tx Bytes,Tx Packet"};
constexpr Kind olt_pon{"olt_side.pon", ont_information_olt_pon,
                       "Drift Positive,Drift Negative,Delimiter Miss Detection,BIP Errors,BIP Units,"
                       "FEC Corrected symbols,FEC Codewords Uncorrected,FEC Codewords Corrected,FEC Codewords,"
                       "FEC Corrected Units,Rx PLOAMs Errors,Rx PLOAMs Non Idle,Rx OMCI,Rx OMCI Packets CRC Error,"
                       "Rx Bytes,Rx Packets,Tx Bytes,Tx Packets,BER Reported"};

std::size_t values_of(const char* labels) {
    return 1 + static_cast<std::size_t>(std::ranges::count(std::string_view(labels), ','));
}

/// Writes `values` numbers from `from` on, one behind the other, at `offset` of the record.
template <class Number, class Record>
void number(Record& record, std::size_t offset, std::size_t values, Number from) {
    for (std::size_t i = 0; i < values; ++i, ++from) {
        std::memcpy(reinterpret_cast<std::byte*>(&record) + offset + i * sizeof(from), &from, sizeof(from));
    }
}

template <class Group>
void number_group(Group& group, const char* labels, std::uint32_t from) {
    group.valid = 1;
    number(group, sizeof(std::uint32_t), values_of(labels), from);
}

template <class Block>
void number_instances(Block& block, std::size_t offset, const char* labels, std::uint32_t from) {
    number(block, offset, values_of(labels) * max_counter_instances, from);
}

/// Each label with a number, the first with `from`.
std::string counters(const char* labels, std::size_t from, std::size_t step = 1) {
    std::istringstream list(labels);
    std::string text;
    for (std::string label; std::getline(list, label, ','); from += step) {
        text += fmt::format(R"({}"{}":{})", text.empty() ? "" : ",", label, from);
    }
    return "{" + text + "}";
}

/// What the first instance shows of values that `number_instances` wrote; of the second, `from` is one more.
std::string instance(const char* labels, std::size_t from) {
    return counters(labels, from, max_counter_instances);
}

class OntCounters : public MonitoringTest {
protected:
    std::string counters_of(const Kind& kind, const std::string& indices = R"(["2","5"])") {
        return get(path_of(kind), indices);
    }

    static std::string path_of(const Kind& kind) {
        return std::string("monitoring.interface.ont.counters.") + kind.route;
    }

    template <class Record>
    void expect_answer(const Kind& kind, const Record& record, const std::string& shown) {
        set_counters(device, kind.number, record);
        EXPECT_EQ(counters_of(kind), answer("[{" + shown + "}]"));
    }

    /// A record without instances is shown and one that claims more than it can hold is refused.
    template <class Record>
    void expect_limit(const Kind& kind, std::uint8_t most = max_counter_instances) {
        Record record{};
        expect_answer(kind, record, "");
        for (const int count : {most + 1, 255}) {
            record.count = static_cast<std::uint8_t>(count);
            set_counters(device, kind.number, record);
            EXPECT_EQ(counters_of(kind), failure(path_of(kind)));
            EXPECT_THAT(take_log(), Contains(HasSubstr(fmt::format("count: {} of at most {}", count, most))));
        }
    }

    /// A record of a kind without directions shows two instances, and its groups where the kind has some.
    template <class Record>
    void expect_instances(const Kind& kind) {
        const auto first = instance(kind.labels, 1000);
        const auto second = instance(kind.labels, 1001);
        Record record{};
        record.count = 2;
        number_instances(record, offsetof(Record, finished_intervals), kind.labels, 1000);
        if constexpr (requires { record.number; }) {
            record.number[0] = 1;
            record.number[1] = 3;
            const auto services = fmt::format(R"("service 1":{},"service 3":{})", first, second);
            expect_answer(kind, record, services);
            number_group(record.mc, kind.labels, 7000);
            number_group(record.bc, kind.labels, 8000);
            expect_answer(kind, record,
                          fmt::format(R"({},"MC":{},"BC":{})", services, counters(kind.labels, 7000),
                                      counters(kind.labels, 8000)));
        } else {
            expect_answer(kind, record, fmt::format(R"("1":{},"2":{})", first, second));
        }
        expect_limit<Record>(kind);
    }
};

TEST_F(OntCounters, KindsWithoutDirections) {
    expect_instances<Ont_gem_port_pm>(gem_port);
    expect_instances<Ont_eth_pm_history_data>(ethernet);
    expect_instances<Ont_ethernet_pm_2>(ethernet_2);
    expect_instances<Ont_eth_pm_history_data_3>(ethernet_3);
    expect_instances<Ont_gal_eth_pm>(gal);
    expect_instances<Ont_fec_pm_counters>(fec);
}

TEST_F(OntCounters, KindsWithDirections) {
    Ont_gem_port_nctp_pm of_services{};
    of_services.count = 1;
    of_services.number[0] = 8;
    number_instances(of_services.downstream, 0, nctp.labels, 1000);
    number_instances(of_services.upstream, 0, nctp_upstream_labels, 2000);
    number_group(of_services.bc, nctp.labels, 8000);
    const auto broadcast = counters(nctp.labels, 8000);
    expect_answer(nctp, of_services,
                  fmt::format(R"("Downstream counters for gem":{{"service 8":{},"BC":{}}},)"
                              R"("Upstream counters for gem":{{"service 8":{}}})",
                              instance(nctp.labels, 1000), broadcast, instance(nctp_upstream_labels, 2000)));
    of_services.count = 0; // the broadcast GEM port has no upstream
    expect_answer(nctp, of_services, fmt::format(R"("Downstream counters for gem":{{"BC":{}}})", broadcast));
    expect_limit<Ont_gem_port_nctp_pm>(nctp);

    Ont_eth_frame_ext_pm of_ports{};
    of_ports.count = 1;
    number_instances(of_ports.upstream, 0, frames.labels, 1000);
    number_instances(of_ports.downstream, 0, frames.labels, 2000);
    number_group(of_ports.upstream.veip, frames.labels, 7000);
    expect_answer(frames, of_ports,
                  fmt::format(R"("Upstream counters for ports":{{"1":{},"veip":{}}},)"
                              R"("Downstream counters for ports":{{"1":{}}})",
                              instance(frames.labels, 1000), counters(frames.labels, 7000),
                              instance(frames.labels, 2000)));
    expect_limit<Ont_eth_frame_ext_pm>(frames);
}

TEST_F(OntCounters, KindsOfTheOltSide) {
    Ont__get_gem_port_counters_response gem_ports{};
    gem_ports.count = 4;
    const std::pair<std::uint16_t, Gem_port_group> ports[] = {
        {4095, gem_port_broadcast}, {640, gem_port_unicast}, {4094, gem_port_multicast}, {641, gem_port_unicast}};
    for (std::size_t i = 0; i < std::size(ports); ++i) {
        auto& entry = gem_ports.entries[i];
        std::tie(entry.gem_port, entry.group) = ports[i];
        number<std::uint64_t>(entry, offsetof(Ont_gem_port_counters, rx_bytes), 4, 10 * i);
    }
    expect_answer(olt_gem_port, gem_ports,
                  fmt::format(R"("GEM port 640":{},"GEM port 641":{},"Multicast":{{"GEM port 4094":{}}},)"
                              R"("Broadcast":{{"GEM port 4095":{}}})",
                              counters(olt_gem_port.labels, 10), counters(olt_gem_port.labels, 30),
                              counters(olt_gem_port.labels, 20), counters(olt_gem_port.labels, 0)));
    expect_limit<Ont__get_gem_port_counters_response>(olt_gem_port, max_gem_ports_per_ont);

    Ont__get_pon_counters_response pon{};
    number<std::uint64_t>(pon, 0, values_of(olt_pon.labels), 1000);
    set_counters(device, olt_pon.number, pon);
    EXPECT_EQ(counters_of(olt_pon), answer("[" + counters(olt_pon.labels, 1000) + "]"));
    pon.drift_positive = 18'446'744'073'709'551'615U;
    set_counters(device, olt_pon.number, pon);
    EXPECT_THAT(exchange(fmt::format(R"({{"session_id":"{}","path":"{}","method":"get",)"
                                     R"("indices":["1","1"]}})",
                                     id, path_of(olt_pon))),
                HasSubstr("\"Drift Positive\":\t18446744073709551615,"));
}

TEST_F(OntCounters, OneObjectForEachOntOfTheRangeInItsOrder) {
    set_counters(device, fec.number, Ont_fec_pm_counters{});
    EXPECT_EQ(counters_of(fec, R"(["3,1","2-3"])"), answer("[{},{},{},{}]"));
    EXPECT_THAT(device.journal,
                ElementsAre("counters 7 of 1/2", "counters 7 of 1/3", "counters 7 of 3/2", "counters 7 of 3/3"));
    device.journal.clear();
    counters_of(fec, R"(["16"])");
    ASSERT_EQ(device.journal.size(), 256U);
    EXPECT_EQ(device.journal.back(), "counters 7 of 16/256");
}

} // namespace
} // namespace xpon::test
