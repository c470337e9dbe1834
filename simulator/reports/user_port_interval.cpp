#include "simulator/reports/user_port_interval.hpp"

#include <array>
#include <cmath>

namespace xpon::simulator {
namespace {

struct MishapRow {
    Mishap mishap;
    double per_million; ///< frames, on a port of middling quality
    bool half_duplex;   ///< on such ports only
};

constexpr std::array mishaps{
    MishapRow{Mishap::fcs, 1.5, false},
    MishapRow{Mishap::excessive_collision, 5, true},
    MishapRow{Mishap::late_collision, 8, true},
    MishapRow{Mishap::too_long, 0.3, false},
    MishapRow{Mishap::overflow_on_receive, 0.4, false},
    MishapRow{Mishap::overflow_on_transmit, 0.5, false},
    MishapRow{Mishap::single_collision, 4000, true},
    MishapRow{Mishap::multiple_collisions, 900, true},
    MishapRow{Mishap::sqe, 2, true},
    MishapRow{Mishap::deferred, 2500, true},
    MishapRow{Mishap::mac_transmit, 0.2, false},
    MishapRow{Mishap::carrier_sense, 12, true},
    MishapRow{Mishap::alignment, 0.6, false},
    MishapRow{Mishap::mac_receive, 0.3, false},
    MishapRow{Mishap::undersize, 0.4, false},
    MishapRow{Mishap::fragment, 0.5, false},
    MishapRow{Mishap::jabber, 0.2, false},
    MishapRow{Mishap::drop, 0.8, false},
    MishapRow{Mishap::wrong_on_transmit, 0.4, false},
    MishapRow{Mishap::undersize_on_transmit, 0.3, false},
    MishapRow{Mishap::oversize_on_transmit, 0.3, false},
    MishapRow{Mishap::filtered_pppoe, 3, false},
};

static_assert([] {
    for (std::size_t nth = 0; nth < mishaps.size(); ++nth) {
        if (mishaps.at(nth).mishap != Mishap{nth}) {
            return false;
        }
    }
    return true;
}());

} // namespace

UserPortInterval::UserPortInterval(const OntCounts& counts, const OntCounts::Interval& interval, unsigned place,
                                   const UserPortTraffic& traffic)
    : counts_(counts), interval_(interval), place_(place), traffic_(traffic) {
    const auto& ont = counts.hardware().position;
    const auto share = [&](std::uint64_t what) {
        return counts.random().share(Purpose::user_port_quality, {ont.port, ont.ont, place, what});
    };
    // Most lines are good, some are bad; old equipment sends and receives by turns.
    constexpr double half_duplex_share = 0.08;
    badness_ = std::pow(10, 3 * share(0) - 1.5);
    is_half_duplex_ = share(1) < half_duplex_share;
}

std::uint64_t UserPortInterval::count(Mishap mishap, const Frames& among) const {
    const auto& row = mishaps.at(static_cast<std::size_t>(mishap));
    if (row.half_duplex && !is_half_duplex_) {
        return 0;
    }
    const double expected = static_cast<double>(among.packets()) * row.per_million * 1e-6 * badness_;
    return counts_.happened(expected, interval_, static_cast<std::uint64_t>(mishap) << 8U | place_);
}

std::uint64_t UserPortInterval::dropped() const {
    constexpr double middling_octets = 300;
    return static_cast<std::uint64_t>(traffic_.refused_up / middling_octets) + count(Mishap::drop, traffic_.up);
}

} // namespace xpon::simulator
