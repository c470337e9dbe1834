#include "simulator/reports/counter_report.hpp"
#include "simulator/reports/user_port_interval.hpp"

#include <array>

namespace xpon::simulator {
namespace {

using History = Ont_eth_pm_history_data;
using Direction = Ont_eth_frame_ext_pm::Direction;
using Veip = Ont_eth_frame_ext_pm::Veip;

/// Frames from users that all or several are to hear: small ones, asking for addresses and for groups.
/// @{
std::uint64_t broadcasts_among(const Frames& from_user) {
    return from_user.of_size.front() / 32;
}
std::uint64_t multicasts_among(const Frames& from_user) {
    return from_user.of_size.front() / 50;
}
/// @}

/// Calls `write(port, place)` for the Ethernet ports of the ONT, and for its virtual one.
template <class Write>
void for_user_ports(const Plant& plant, std::uint16_t index, Write write) {
    const auto counts = OntCounts::of(plant, index);
    if (!counts) {
        return;
    }
    const auto interval = counts->last_interval();
    const auto& model = *counts->hardware().model;
    const auto before = count_user_ports(model, counts->settings(), interval.before);
    const auto after = count_user_ports(model, counts->settings(), interval.after);
    for (unsigned place = 0; place < after.size(); ++place) {
        if (place == veip_place ? model.has_router : place < model.ethernet_ports) {
            auto traffic = after.at(place);
            write(UserPortInterval(*counts, interval, place, traffic -= before.at(place)), place);
        }
    }
}

template <class Record>
struct Row {
    Ont_instance_values Record::* values;
    std::uint64_t (*count)(const UserPortInterval& port);
};

/// A record whose instances are the Ethernet ports, by a table of its values.
template <class Record, std::size_t Rows>
Record report(const Plant& plant, std::uint16_t index, const std::array<Row<Record>, Rows>& rows) {
    auto record = Record();
    for_user_ports(plant, index, [&](const UserPortInterval& port, unsigned place) {
        if (place == veip_place) {
            return;
        }
        record.finished_intervals[place] = port.finished();
        for (const auto& row : rows) {
            (record.*row.values)[place] = low_32(row.count(port));
        }
        record.count = static_cast<std::uint8_t>(place + 1);
    });
    return record;
}

template <Mishap What>
std::uint64_t from_user(const UserPortInterval& port) {
    return port.count(What, port.traffic().up);
}

template <Mishap What>
std::uint64_t to_user(const UserPortInterval& port) {
    return port.count(What, port.traffic().down);
}

template <std::size_t Bin>
std::uint64_t up_of_size(const UserPortInterval& port) {
    return port.traffic().up.of_size.at(Bin);
}

template <std::size_t Bin>
std::uint64_t down_of_size(const UserPortInterval& port) {
    return port.traffic().down.of_size.at(Bin);
}

std::uint64_t up_dropped(const UserPortInterval& port) {
    return port.dropped();
}
std::uint64_t up_octets(const UserPortInterval& port) {
    return port.traffic().up.octets();
}
/// ME 296 knows no long ones beside the jabbers.
std::uint64_t up_packets(const UserPortInterval& port) {
    return port.traffic().up.packets() + from_user<Mishap::undersize>(port);
}
std::uint64_t up_frames(const UserPortInterval& port) {
    return up_packets(port) + from_user<Mishap::too_long>(port);
}
std::uint64_t up_broadcasts(const UserPortInterval& port) {
    return broadcasts_among(port.traffic().up);
}
std::uint64_t up_multicasts(const UserPortInterval& port) {
    return multicasts_among(port.traffic().up);
}
std::uint64_t down_octets(const UserPortInterval& port) {
    return port.traffic().down.octets();
}
std::uint64_t down_frames(const UserPortInterval& port) {
    return port.traffic().down.packets() + to_user<Mishap::undersize_on_transmit>(port) +
           to_user<Mishap::oversize_on_transmit>(port);
}
std::uint64_t down_broadcasts(const UserPortInterval& port) {
    return port.traffic().down_broadcast.packets();
}
std::uint64_t down_multicasts(const UserPortInterval& port) {
    return port.traffic().down_multicast.packets();
}

constexpr std::array history_rows{
    Row<History>{&History::fcs_errors, from_user<Mishap::fcs>},
    Row<History>{&History::excessive_collision, to_user<Mishap::excessive_collision>},
    Row<History>{&History::late_collision, to_user<Mishap::late_collision>},
    Row<History>{&History::frames_too_long, from_user<Mishap::too_long>},
    Row<History>{&History::buffer_overflows_on_receive, from_user<Mishap::overflow_on_receive>},
    Row<History>{&History::buffer_overflows_on_transmit, to_user<Mishap::overflow_on_transmit>},
    Row<History>{&History::single_collision, to_user<Mishap::single_collision>},
    Row<History>{&History::multiple_collisions, to_user<Mishap::multiple_collisions>},
    Row<History>{&History::sqe, to_user<Mishap::sqe>},
    Row<History>{&History::deferred_transmission, to_user<Mishap::deferred>},
    Row<History>{&History::internal_mac_transmit_error, to_user<Mishap::mac_transmit>},
    Row<History>{&History::carrier_sense_error, to_user<Mishap::carrier_sense>},
    Row<History>{&History::alignment_error, from_user<Mishap::alignment>},
    Row<History>{&History::internal_mac_receive_error, from_user<Mishap::mac_receive>},
};

using History2 = Ont_ethernet_pm_2;
constexpr std::array history_2_rows{
    Row<History2>{&History2::pppoe_filtered_frame_counters, from_user<Mishap::filtered_pppoe>},
};

using History3 = Ont_eth_pm_history_data_3;
constexpr std::array history_3_rows{
    Row<History3>{&History3::drop_events, up_dropped},
    Row<History3>{&History3::octets, up_octets},
    Row<History3>{&History3::packets, up_packets},
    Row<History3>{&History3::broadcast_packets, up_broadcasts},
    Row<History3>{&History3::multicast_packets, up_multicasts},
    Row<History3>{&History3::undersize_packets, from_user<Mishap::undersize>},
    Row<History3>{&History3::fragments, from_user<Mishap::fragment>},
    Row<History3>{&History3::jabbers, from_user<Mishap::jabber>},
    Row<History3>{&History3::packets_64_octets, up_of_size<0>},
    Row<History3>{&History3::packets_65_to_127_octets, up_of_size<1>},
    Row<History3>{&History3::packets_128_to_255_octets, up_of_size<2>},
    Row<History3>{&History3::packets_256_to_511_octets, up_of_size<3>},
    Row<History3>{&History3::packets_512_to_1023_octets, up_of_size<4>},
    Row<History3>{&History3::packets_1024_to_1518_octets, up_of_size<5>},
};

/// A value of ME 334, of a port and of the virtual one, in either direction.
struct ExtendedRow {
    Ont_instance_values Direction::* values;
    std::uint32_t Veip::* veip;
    std::uint64_t (*up)(const UserPortInterval& port);
    std::uint64_t (*down)(const UserPortInterval& port);
};

// clang-format off
constexpr std::array extended_rows{
    ExtendedRow{&Direction::drop_events, &Veip::drop_events, up_dropped, to_user<Mishap::overflow_on_transmit>},
    ExtendedRow{&Direction::octets, &Veip::octets, up_octets, down_octets},
    ExtendedRow{&Direction::frames, &Veip::frames, up_frames, down_frames},
    ExtendedRow{&Direction::broadcast_frames, &Veip::broadcast_frames, up_broadcasts, down_broadcasts},
    ExtendedRow{&Direction::multicast_frames, &Veip::multicast_frames, up_multicasts, down_multicasts},
    ExtendedRow{&Direction::crc_errored_frames, &Veip::crc_errored_frames, from_user<Mishap::fcs>, to_user<Mishap::wrong_on_transmit>},
    ExtendedRow{&Direction::undersize_frames, &Veip::undersize_frames, from_user<Mishap::undersize>, to_user<Mishap::undersize_on_transmit>},
    ExtendedRow{&Direction::oversize_frames, &Veip::oversize_frames, from_user<Mishap::too_long>, to_user<Mishap::oversize_on_transmit>},
    ExtendedRow{&Direction::frames_64_octets, &Veip::frames_64_octets, up_of_size<0>, down_of_size<0>},
    ExtendedRow{&Direction::frames_65_to_127_octets, &Veip::frames_65_to_127_octets, up_of_size<1>, down_of_size<1>},
    ExtendedRow{&Direction::frames_128_to_255_octets, &Veip::frames_128_to_255_octets, up_of_size<2>, down_of_size<2>},
    ExtendedRow{&Direction::frames_256_to_511_octets, &Veip::frames_256_to_511_octets, up_of_size<3>, down_of_size<3>},
    ExtendedRow{&Direction::frames_512_to_1023_octets, &Veip::frames_512_to_1023_octets, up_of_size<4>, down_of_size<4>},
    ExtendedRow{&Direction::frames_1024_to_1518_octets, &Veip::frames_1024_to_1518_octets, up_of_size<5>, down_of_size<5>},
};
// clang-format on

} // namespace

Ont_eth_pm_history_data report_eth_pm(const Plant& plant, std::uint16_t index) {
    return report(plant, index, history_rows);
}

Ont_ethernet_pm_2 report_eth_pm_2(const Plant& plant, std::uint16_t index) {
    return report(plant, index, history_2_rows);
}

Ont_eth_pm_history_data_3 report_eth_pm_3(const Plant& plant, std::uint16_t index) {
    return report(plant, index, history_3_rows);
}

Ont_eth_frame_ext_pm report_eth_frame_ext_pm(const Plant& plant, std::uint16_t index) {
    auto record = Ont_eth_frame_ext_pm();
    for_user_ports(plant, index, [&](const UserPortInterval& port, unsigned place) {
        const auto write = [&](Direction& direction, auto count) {
            if (place == veip_place) {
                direction.veip.valid = 1;
                direction.veip.finished_intervals = port.finished();
            } else {
                direction.finished_intervals[place] = port.finished();
            }
            for (const auto& row : extended_rows) {
                auto& value = place == veip_place ? direction.veip.*row.veip : (direction.*row.values)[place];
                value = low_32((row.*count)(port));
            }
        };
        write(record.upstream, &ExtendedRow::up);
        write(record.downstream, &ExtendedRow::down);
        if (place != veip_place) {
            record.count = static_cast<std::uint8_t>(place + 1);
        }
    });
    return record;
}

} // namespace xpon::simulator
