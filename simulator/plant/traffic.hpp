#pragma once

#include "simulator/plant/multicast.hpp"
#include "simulator/plant/rate_curve.hpp"
#include "simulator/plant/service_usage.hpp"
#include "simulator/plant/service_use.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace xpon::simulator {

/// Octets of the frames of each bin of the counters: frames are of these sizes only.
inline constexpr std::array<unsigned, 6> frame_sizes{64, 100, 200, 400, 800, 1400};

/// What share of the octets of some traffic is in frames of each size.
using FrameMix = std::array<double, frame_sizes.size()>;

/// When users use a service that they may use. Each says how long by a time, counted from a fixed one, in seconds, and
/// what share of the time.
/// @{
struct Always {
    [[nodiscard]] static double flowed(PlantTime time) {
        return seconds_of(time);
    }
    static constexpr double share = 1;
};
/// Telephone calls: one a turn.
struct Calls {
    double turn_s;
    double offset_s;
    [[nodiscard]] double flowed(PlantTime time) const;
    static constexpr double share = 0.05;
};
using FlowTimes = std::variant<Always, Calls>;
/// @}

/// What has passed, and what limits kept from passing, in octets.
struct FlowAmount {
    double passed;
    double refused;
};

/// Bounds of a rate in kbit/s.
struct RateRange {
    double least;
    double most;
};

/// One way of the traffic of one service. All amounts count from a fixed time that is the same for equal settings, so
/// that only their differences mean something.
class Flow {
public:
    /// Its rate moves with the curve from the least to the most.
    Flow(const FrameMix& mix, const RateRange& kbps, const FlowTimes& times, const RateCurve& curve);

    [[nodiscard]] FlowAmount until(PlantTime time) const;
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

/// The streams that the viewers of a service watch. Amounts as those of a Flow.
class StreamFlow {
public:
    explicit StreamFlow(const Viewer& viewer) : viewer_(viewer) {}
    /// The same streams all the time.
    explicit StreamFlow(double kbps) : viewer_(kbps) {}

    [[nodiscard]] FlowAmount until(PlantTime time) const;
    [[nodiscard]] static const FrameMix& mix();
    /// As of a Flow.
    [[nodiscard]] double peak() const;
    void limit(double factor) {
        passed_share_ *= factor;
    }

private:
    std::variant<Viewer, double> viewer_; ///< or in kbit/s
    double passed_share_ = 1;
};

/// What the hosts of a service send while they cannot use it: each asks for its lease, session or gateway again and
/// again.
class Retries {
public:
    Retries(const ServiceHosts& hosts, const ServiceSettings& service);

    /// Frames in a time.
    [[nodiscard]] std::uint64_t count(PlantTime from, PlantTime to) const;
    /// Their place among the sizes of frames.
    [[nodiscard]] std::size_t bin() const {
        return bin_;
    }

private:
    unsigned hosts_;
    std::size_t bin_;
    PlantTime period_;
    PlantTime offset_;
};

struct ServiceTraffic {
    unsigned number; ///< of the service, from 1
    ServiceUse use;  ///< when its flows flow; otherwise there are retries
    Flow down;       ///< of the unicast GEM port, as the next
    Flow up;
    Retries retries;
    std::optional<StreamFlow> multicast; ///< of an IPTV service
};

/// What flows to all ONTs of a PON port alike, in whole frames.
class SharedFlow {
public:
    SharedFlow(const Circumstances& given, unsigned pon_port);

    /// Frames of a size, by its place, in a time.
    [[nodiscard]] std::uint64_t count(std::size_t bin, PlantTime from, PlantTime to) const;

private:
    Flow flow_;
    std::vector<Stretch> usable_;
};

/// What flows to and from an ONT in service, within the limits of its services, T-CONTs and the ONT itself.
struct OntTraffic {
    /// `since`: in service.
    OntTraffic(const Circumstances& given, const PhysicalOnt& ont, const OntSettings& settings, PlantTime since,
               const OntUsage& usage);

    std::vector<ServiceTraffic> services; ///< as the settings have them
    std::optional<SharedFlow> broadcast;  ///< when a service gets it
    double granted;                       ///< upstream, used or not, in octets per second
};

} // namespace xpon::simulator
