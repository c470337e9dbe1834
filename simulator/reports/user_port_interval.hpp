#pragma once

#include "simulator/reports/ont_counts.hpp"
#include "simulator/reports/user_ports.hpp"

namespace xpon::simulator {

/// What goes wrong between a user and the ONT.
enum class Mishap : std::uint64_t {
    fcs,
    excessive_collision,
    late_collision,
    too_long,
    overflow_on_receive,
    overflow_on_transmit,
    single_collision,
    multiple_collisions,
    sqe,
    deferred,
    mac_transmit,
    carrier_sense,
    alignment,
    mac_receive,
    undersize,
    fragment,
    jabber,
    drop,
    wrong_on_transmit,
    undersize_on_transmit,
    oversize_on_transmit,
    filtered_pppoe,
};

/// One user port in one interval.
class UserPortInterval {
public:
    /// `place` as in UserPorts; `traffic` of the interval. The other arguments outlive this object.
    UserPortInterval(const OntCounts& counts, const OntCounts::Interval& interval, unsigned place,
                     const UserPortTraffic& traffic);

    [[nodiscard]] const UserPortTraffic& traffic() const {
        return traffic_;
    }
    [[nodiscard]] std::uint32_t finished() const {
        return interval_end_time(interval_);
    }
    /// How often it happened to the frames.
    [[nodiscard]] std::uint64_t count(Mishap mishap, const Frames& among) const;
    /// Frames from the user that found no room.
    [[nodiscard]] std::uint64_t dropped() const;

private:
    const OntCounts& counts_;
    const OntCounts::Interval& interval_;
    unsigned place_;
    UserPortTraffic traffic_;
    double badness_; ///< of its line, around 1
    bool is_half_duplex_;
};

} // namespace xpon::simulator
