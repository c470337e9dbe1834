#pragma once

#include "simulator/plant/multicast.hpp"
#include "simulator/plant/rate_curve.hpp"
#include "simulator/plant/running_configuration.hpp"

#include <array>
#include <cstddef>
#include <optional>
#include <variant>
#include <vector>

namespace xpon::simulator {

/// Octets of the frames of each bin of the counters: frames are of these sizes only.
inline constexpr std::array<unsigned, 6> frame_sizes{64, 100, 200, 400, 800, 1400};

/// What share of the octets of some traffic is in frames of each size.
using FrameMix = std::array<double, frame_sizes.size()>;

/// When traffic flows at all. Each says how long it has flowed by a time, counted from a fixed one, in seconds; how
/// much of the time it flows; and how many times over at most at once.
/// @{
struct Always {
    [[nodiscard]] static double flowed(PlantTime time) {
        return seconds_of(time);
    }
    static constexpr double share = 1;
    static constexpr double most = 1;
};
/// Telephone calls: one a turn.
struct Calls {
    double turn_s;
    double offset_s;
    [[nodiscard]] double flowed(PlantTime time) const;
    static constexpr double share = 0.05;
    static constexpr double most = 1;
};
/// As many streams as groups are watched.
struct Watching {
    Viewer viewer;
    double share;
    double most;
    [[nodiscard]] double flowed(PlantTime time) const {
        return seconds_of(viewer.watched(time));
    }
};
using FlowTimes = std::variant<Always, Calls, Watching>;
/// @}

/// One way of the traffic of one service. All amounts count from a fixed time that is the same for equal settings, so
/// that only their differences mean something.
class Flow {
public:
    /// What has passed, and what limits kept from passing, in octets.
    struct Amount {
        double passed;
        double refused;
    };

    Flow(const FrameMix& mix, double mean_kbps, const FlowTimes& times, const RateCurve& curve);

    [[nodiscard]] Amount until(PlantTime time) const;
    [[nodiscard]] const FrameMix& mix() const {
        return *mix_;
    }
    /// The highest rate that the flow comes to, in octets per second.
    [[nodiscard]] double peak() const;
    /// Lowers the peak by a factor of at most 1; a rate below the lowered peak stays as it was as far as it can.
    void limit(double factor);

private:
    /// Rate while it flows, once: it moves with the curve between these, in octets per second.
    struct Range {
        double least;
        double most;
    };

    const FrameMix* mix_;
    Range wanted_;
    Range allowed_;
    FlowTimes times_;
    RateCurve curve_;
};

struct ServiceTraffic {
    unsigned number; ///< of the service, from 1
    Flow down;       ///< of the unicast GEM port, as the next
    Flow up;
    std::optional<Flow> multicast; ///< of an IPTV service
};

/// What flows to and from an ONT in service, within the limits of its services, T-CONTs and the ONT itself.
struct OntTraffic {
    OntTraffic(const Random& random, const OntPosition& ont, const OntSettings& settings);

    std::vector<ServiceTraffic> services; ///< as the settings have them
    std::optional<Flow> broadcast;        ///< when a service gets it
    double granted;                       ///< upstream, used or not, in octets per second
};

} // namespace xpon::simulator
