// Counters of ONTs: the whole answer of each kind, label by label, and records that are not to be trusted.

#include "tests/service/monitoring_fixture.hpp"

#include <cstddef>
#include <functional>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using namespace std::string_literals;

constexpr const char* gem_port_route = "ont_side.gem_port_performance_monitoring";
constexpr const char* nctp_route = "ont_side.gem_port_nctp_performance_monitoring";
constexpr const char* ethernet_route = "ont_side.ethernet_performance_monitoring_history_data";
constexpr const char* ethernet_2_route = "ont_side.ethernet_performance_monitoring_history_data_2";
constexpr const char* ethernet_3_route = "ont_side.ethernet_performance_monitoring_history_data_3";
constexpr const char* gal_route = "ont_side.gal_ethernet_performance_monitoring_history_data";
constexpr const char* fec_route = "ont_side.fec_performance_monitoring_history_data";
constexpr const char* frames_route = "ont_side.ethernet_frame_extended_performance_monitoring";
constexpr const char* olt_gem_route = "olt_side.gem_port";
constexpr const char* olt_pon_route = "olt_side.pon";

using Labels = std::vector<const char*>;

const Labels gem_port_labels = {"Finished intervals", "Lost packets",       "Misinserted packets", "Received packets",
                                "Received blocks",    "Transmitted blocks", "Impaired blocks"};
const Labels received_labels = {"Finished intervals", "Received GEM frames", "Received payload bytes"};
const Labels transmitted_labels = {"Finished intervals", "Transmitted GEM frames", "Transmitted payload bytes"};
const Labels ethernet_labels = {"Finished intervals",
                                "Fcs errors",
                                "Excessive collision",
                                "Late collision",
                                "Frames too long",
                                "Buffer overflows on receive",
                                "Buffer overflows on transmit",
                                "Single collision",
                                "Multiple collisions",
                                "Sqe",
                                "Deferred transmission",
                                "Internal mac transmit error",
                                "Carrier sense error",
                                "Alignment error",
                                "Internal mac receive error"};
const Labels ethernet_2_labels = {"Finished intervals", "PPPoE filtered frame counters"};
const Labels ethernet_3_labels = {"Finished intervals",
                                  "Drop events",
                                  "Octets",
                                  "Packets",
                                  "Broadcast packets",
                                  "Multicast packets",
                                  "Undersize packets",
                                  "Fragments",
                                  "Jabbers",
                                  "Packets 64 octets",
                                  "Packets 65 to 127 octets",
                                  "Packets 128 to 255 octets",
                                  "Packets 256 to 511 octets",
                                  "Packets 512 to 1023 octets",
                                  "Packets 1024 to 1518 octets"};
const Labels frame_labels = {"Finished intervals",
                             "Drop events",
                             "Octets",
                             "Frames",
                             "Broadcast frames",
                             "Multicast frames",
                             "CRC errored frames",
                             "Undersize frames",
                             "Oversize frames",
                             "Frames 64 octets",
                             "Frames 65 to 127 octets",
                             "Frames 128 to 255 octets",
                             "Frames 256 to 511 octets",
                             "Frames 512 to 1023 octets",
                             "Frames 1024 to 1518 octets"};
const Labels fec_labels = {"Finished intervals",       "Corrected bytes",  "Corrected code words",
                           "Uncorrectable code words", "Total code words", "FEC seconds"};
const Labels gal_labels = {"Finished intervals", "Discarded frames"};
const Labels olt_gem_labels = {"Rx Bytes", "Rx Packet", "Tx Bytes", "Tx Packet"};
const Labels olt_pon_labels = {"Drift Positive",
                               "Drift Negative",
                               "Delimiter Miss Detection",
                               "BIP Errors",
                               "BIP Units",
                               "FEC Corrected symbols",
                               "FEC Codewords Uncorrected",
                               "FEC Codewords Corrected",
                               "FEC Codewords",
                               "FEC Corrected Units",
                               "Rx PLOAMs Errors",
                               "Rx PLOAMs Non Idle",
                               "Rx OMCI",
                               "Rx OMCI Packets CRC Error",
                               "Rx Bytes",
                               "Rx Packets",
                               "Tx Bytes",
                               "Tx Packets",
                               "BER Reported"};

/// Writes `values` numbers from `from` on, one behind the other, at `offset` of the record. Records hold their counters
/// in the order of the labels.
template <class Number, class Record>
void number(Record& record, std::size_t offset, std::size_t values, Number from) {
    for (std::size_t i = 0; i < values; ++i, ++from) {
        std::memcpy(reinterpret_cast<std::byte*>(&record) + offset + i * sizeof(from), &from, sizeof(from));
    }
}

template <class Block>
void number_instances(Block& block, std::size_t offset, const Labels& labels, std::uint32_t from = 1000) {
    number(block, offset, labels.size() * max_counter_instances, from);
}

template <class Group>
Group numbered_group(const Labels& labels, std::uint32_t from) {
    Group group{};
    group.valid = 1;
    number(group, sizeof(std::uint32_t), labels.size(), from);
    return group;
}

std::string counters(const Labels& labels, std::size_t from, std::size_t step = 1) {
    std::string text;
    for (const auto* label : labels) {
        text += fmt::format(R"({}"{}":{})", text.empty() ? "" : ",", label, from);
        from += step;
    }
    return "{" + text + "}";
}

/// What an instance shows, numbered from 0, of values that `number_instances` wrote.
std::string instance(const Labels& labels, std::size_t index, std::size_t from = 1000) {
    return counters(labels, from + index, max_counter_instances);
}

class OntCounters : public MonitoringTest {
protected:
    std::string counters_of(const std::string& route, const std::string& indices = R"(["2","5"])") {
        return get("monitoring.interface.ont.counters." + route, R"("indices":)" + indices);
    }
    std::string failed(const std::string& route) const {
        return failure("monitoring.interface.ont.counters." + route);
    }

    /// A record with the instances 1 and 2 of a kind without groups shows them.
    template <class Record>
    void expect_instances(const char* route, Ont_information_kind kind, const Labels& labels) {
        Record record{};
        record.count = 2;
        number_instances(record, offsetof(Record, finished_intervals), labels);
        set_counters(device, kind, record);
        EXPECT_EQ(counters_of(route),
                  answer(fmt::format(R"([{{"1":{},"2":{}}}])", instance(labels, 0), instance(labels, 1))));
    }

    /// A record with two services and the groups of a kind without directions shows them.
    template <class Record>
    void expect_services(const char* route, Ont_information_kind kind, const Labels& labels) {
        Record record{};
        record.count = 2;
        record.number[0] = 1;
        record.number[1] = 3;
        number_instances(record, offsetof(Record, finished_intervals), labels);
        record.mc = numbered_group<typename Record::Group>(labels, 7000);
        record.bc = numbered_group<typename Record::Group>(labels, 8000);
        set_counters(device, kind, record);
        const auto services = fmt::format(R"("service 1":{},"service 3":{})", instance(labels, 0), instance(labels, 1));
        EXPECT_EQ(counters_of(route), answer(fmt::format(R"([{{{},"MC":{},"BC":{}}}])", services,
                                                         counters(labels, 7000), counters(labels, 8000))));
        record.mc.valid = 0;
        record.bc.valid = 0;
        set_counters(device, kind, record);
        EXPECT_EQ(counters_of(route), answer("[{" + services + "}]"));
    }
};

TEST_F(OntCounters, KindsWithInstancesOnly) {
    expect_instances<Ont_eth_pm_history_data>(ethernet_route, ont_information_eth_pm_history_data, ethernet_labels);
    expect_instances<Ont_ethernet_pm_2>(ethernet_2_route, ont_information_ethernet_pm_2, ethernet_2_labels);
    expect_instances<Ont_eth_pm_history_data_3>(ethernet_3_route, ont_information_eth_pm_history_data_3,
                                                ethernet_3_labels);
    expect_instances<Ont_fec_pm_counters>(fec_route, ont_information_fec_pm, fec_labels);
}

TEST_F(OntCounters, KindsOfServices) {
    expect_services<Ont_gem_port_pm>(gem_port_route, ont_information_gem_port_pm, gem_port_labels);
    expect_services<Ont_gal_eth_pm>(gal_route, ont_information_gal_eth_pm, gal_labels);
}

TEST_F(OntCounters, KindsWithDirections) {
    Ont_gem_port_nctp_pm nctp{};
    nctp.count = 1;
    nctp.number[0] = 8;
    number_instances(nctp.downstream, 0, received_labels, 1000);
    number_instances(nctp.upstream, 0, transmitted_labels, 2000);
    nctp.bc = numbered_group<Ont_gem_port_nctp_pm::Group>(received_labels, 8000);
    set_counters(device, ont_information_gem_port_nctp_pm, nctp);
    EXPECT_EQ(counters_of(nctp_route),
              answer(fmt::format(R"([{{"Downstream counters for gem":{{"service 8":{},"BC":{}}},)"
                                 R"("Upstream counters for gem":{{"service 8":{}}}}}])",
                                 instance(received_labels, 0, 1000), counters(received_labels, 8000),
                                 instance(transmitted_labels, 0, 2000))));
    nctp.count = 0; // the broadcast GEM port has no upstream
    set_counters(device, ont_information_gem_port_nctp_pm, nctp);
    EXPECT_EQ(counters_of(nctp_route), answer(fmt::format(R"([{{"Downstream counters for gem":{{"BC":{}}}}}])",
                                                          counters(received_labels, 8000))));

    Ont_eth_frame_ext_pm frames{};
    frames.count = 24;
    number_instances(frames.upstream, 0, frame_labels, 1000);
    number_instances(frames.downstream, 0, frame_labels, 2000);
    frames.upstream.veip = numbered_group<Ont_eth_frame_ext_pm::Veip>(frame_labels, 7000);
    std::string up;
    std::string down;
    for (std::size_t i = 0; i < 24; ++i) {
        const auto* const comma = i == 0 ? "" : ",";
        up += fmt::format(R"({}"{}":{})", comma, i + 1, instance(frame_labels, i, 1000));
        down += fmt::format(R"({}"{}":{})", comma, i + 1, instance(frame_labels, i, 2000));
    }
    set_counters(device, ont_information_eth_frame_ext_pm, frames);
    EXPECT_EQ(counters_of(frames_route), answer(fmt::format(R"([{{"Upstream counters for ports":{{{},"veip":{}}},)"
                                                            R"("Downstream counters for ports":{{{}}}}}])",
                                                            up, counters(frame_labels, 7000), down)));
}

TEST_F(OntCounters, KindsOfTheOltSide) {
    Ont__get_gem_port_counters_response gem_ports{};
    gem_ports.count = 4;
    const std::pair<std::uint16_t, Gem_port_group> ports[] = {
        {4095, gem_port_broadcast}, {640, gem_port_unicast}, {4094, gem_port_multicast}, {641, gem_port_unicast}};
    for (std::size_t i = 0; i < std::size(ports); ++i) {
        auto& entry = gem_ports.entries[i];
        entry.gem_port = ports[i].first;
        entry.group = ports[i].second;
        number<std::uint64_t>(entry, offsetof(Ont_gem_port_counters, rx_bytes), 4, 10 * i);
    }
    set_counters(device, ont_information_olt_gem_port, gem_ports);
    EXPECT_EQ(counters_of(olt_gem_route),
              answer(fmt::format(R"([{{"GEM port 640":{},"GEM port 641":{},"Multicast":{{"GEM port 4094":{}}},)"
                                 R"("Broadcast":{{"GEM port 4095":{}}}}}])",
                                 counters(olt_gem_labels, 10), counters(olt_gem_labels, 30),
                                 counters(olt_gem_labels, 20), counters(olt_gem_labels, 0))));

    Ont__get_pon_counters_response pon{};
    constexpr std::size_t from = 18'446'744'073'709'551'597U; // so that the last is the greatest there is
    number<std::uint64_t>(pon, 0, olt_pon_labels.size(), from);
    set_counters(device, ont_information_olt_pon, pon);
    const auto whole =
        exchange(connection, fmt::format(R"({{"session_id":"{}","path":"monitoring.interface.ont.)"
                                         R"(counters.olt_side.pon","method":"get","indices":["1","1"]}})",
                                         id));
    for (std::size_t i = 0; i < olt_pon_labels.size(); ++i) {
        EXPECT_THAT(whole, HasSubstr(fmt::format("\"{}\":\t{}", olt_pon_labels[i], from + i)));
    }
    set_counters(device, ont_information_olt_pon, Ont__get_pon_counters_response{});
    EXPECT_EQ(counters_of(olt_pon_route), answer("[" + counters(olt_pon_labels, 0, 0) + "]"));
}

TEST_F(OntCounters, OneObjectForEachOntOfTheRangeInItsOrder) {
    set_counters(device, ont_information_fec_pm, Ont_fec_pm_counters{});
    EXPECT_EQ(counters_of(fec_route, R"(["3,1","2-3"])"), answer("[{},{},{},{}]"));
    EXPECT_THAT(device.journal,
                ElementsAre("counters 7 of 1/2", "counters 7 of 1/3", "counters 7 of 3/2", "counters 7 of 3/3"));
    device.journal.clear();
    counters_of(fec_route, R"(["16"])");
    ASSERT_EQ(device.journal.size(), 256U);
    EXPECT_EQ(device.journal.front(), "counters 7 of 16/1");
    EXPECT_EQ(device.journal.back(), "counters 7 of 16/256");
}

TEST_F(OntCounters, EachRouteAsksForItsOwnKind) {
    const char* const routes[] = {gem_port_route, nctp_route, ethernet_route, ethernet_2_route, ethernet_3_route,
                                  gal_route,      fec_route,  frames_route,   olt_gem_route,    olt_pon_route};
    for (std::size_t i = 0; i < std::size(routes); ++i) {
        device.journal.clear();
        counters_of(routes[i]);
        EXPECT_THAT(device.journal, ElementsAre(fmt::format("counters {} of 2/5", i + 1))) << routes[i];
    }
}

TEST_F(OntCounters, WrongIndices) {
    for (const auto* indices : {"[]", R"(["1","1","1"])", R"(["17"])", R"(["0"])", R"(["1","257"])", R"(["1","x"])",
                                R"(["1/1"])", R"([""])"}) {
        take_log();
        EXPECT_EQ(counters_of(fec_route, indices), failed(fec_route)) << indices;
        EXPECT_THAT(take_log(),
                    Contains(HasSubstr("Indices must contain pon-port numbers and optionally ont numbers")));
    }
    EXPECT_THAT(device.journal, testing::IsEmpty());
}

TEST_F(OntCounters, ACallThatFailsOrGivesNothingFailsTheRequest) {
    device.calls = 0;
    device.failing_call = 2;
    EXPECT_EQ(counters_of(fec_route, R"(["1","1-4"])"), failed(fec_route));
    EXPECT_THAT(take_log(),
                testing::AllOf(Contains("C API function returned -1, errno=5"),
                               Contains(HasSubstr("custom_layer__get_ont_information_by_index() failed: -1"))));
    device.failing_call = 0;
    device.counters.clear();
    EXPECT_EQ(counters_of(fec_route), failed(fec_route));
    EXPECT_THAT(take_log(), Contains(HasSubstr("Object cannot be null")));
}

TEST_F(OntCounters, RecordsThatClaimTooMuchAreRefused) {
    struct Case {
        const char* route;
        std::function<void(std::uint8_t count)> spoil;
    };
    const auto spoil = [&]<class Record>(Ont_information_kind kind, Record record) {
        return [this, kind, record](std::uint8_t count) mutable {
            record.count = count;
            set_counters(device, kind, record);
        };
    };
    const Case cases[] = {
        {gem_port_route, spoil(ont_information_gem_port_pm, Ont_gem_port_pm{})},
        {nctp_route, spoil(ont_information_gem_port_nctp_pm, Ont_gem_port_nctp_pm{})},
        {ethernet_route, spoil(ont_information_eth_pm_history_data, Ont_eth_pm_history_data{})},
        {ethernet_2_route, spoil(ont_information_ethernet_pm_2, Ont_ethernet_pm_2{})},
        {ethernet_3_route, spoil(ont_information_eth_pm_history_data_3, Ont_eth_pm_history_data_3{})},
        {gal_route, spoil(ont_information_gal_eth_pm, Ont_gal_eth_pm{})},
        {fec_route, spoil(ont_information_fec_pm, Ont_fec_pm_counters{})},
        {frames_route, spoil(ont_information_eth_frame_ext_pm, Ont_eth_frame_ext_pm{})},
        {olt_gem_route, spoil(ont_information_olt_gem_port, Ont__get_gem_port_counters_response{})},
    };
    for (const auto& [route, make] : cases) {
        const std::uint8_t most = route == olt_gem_route ? max_gem_ports_per_ont : max_counter_instances;
        make(0);
        EXPECT_EQ(counters_of(route), answer("[{}]")) << route;
        make(most);
        EXPECT_THAT(counters_of(route), HasSubstr(R"("success":true)")) << route;
        for (const std::uint8_t count : {std::uint8_t(most + 1), std::uint8_t{255}}) {
            make(count);
            EXPECT_EQ(counters_of(route), failed(route)) << route;
            EXPECT_THAT(take_log(), Contains(HasSubstr(fmt::format("count: {} of at most {}", count, most))));
        }
    }
    Ont__get_gem_port_counters_response gem_ports{};
    gem_ports.count = 1;
    gem_ports.entries[0].group = Gem_port_group{3};
    set_counters(device, ont_information_olt_gem_port, gem_ports);
    EXPECT_EQ(counters_of(olt_gem_route), failed(olt_gem_route));
    EXPECT_THAT(take_log(), Contains(HasSubstr("group: 3 of at most 2")));
}

} // namespace
} // namespace xpon::test
