#pragma once

#include "simulator/plant/bit_errors.hpp"
#include "simulator/plant/ont_population.hpp"
#include "simulator/plant/traffic.hpp"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace xpon::simulator {

/// Whole frames by size.
struct Frames {
    std::array<std::uint64_t, frame_sizes.size()> of_size{};

    [[nodiscard]] std::uint64_t packets() const;
    [[nodiscard]] std::uint64_t octets() const;
    Frames& operator+=(const Frames& more);
    Frames& operator-=(const Frames& less);
};

/// Frames on the PON.
struct LinkTraffic {
    std::uint64_t octets = 0;
    std::uint64_t packets = 0;

    void add(const Frames& frames) {
        octets += frames.octets();
        packets += frames.packets();
    }
};

/// What went into a GEM port by some time, and what came out of it. Parts of frames and the rest of rounding are kept,
/// so that no sum loses anything.
struct FlowTally {
    std::array<double, frame_sizes.size()> sent{}; ///< frames by size
    std::array<double, frame_sizes.size()> lost{}; ///< of these
    double refused = 0;                            ///< by a limit, in octets

    [[nodiscard]] Frames frames_sent() const;
    [[nodiscard]] Frames frames_lost() const;
    [[nodiscard]] Frames frames_received() const;
};

/// Code words of forward error correction, RS(255, 239) [G.984.3 13].
struct FecTally {
    double words = 0;
    double corrected = 0;
    double uncorrectable = 0;
    double extra_bytes = 0; ///< corrected ones above one per corrected word
};

/// All that is counted of an ONT, by some time.
struct OntTally {
    struct Service {
        FlowTally down;
        FlowTally up;
        FlowTally multicast;
    };

    /// @returns by the number of the service, from 1.
    /// @{
    [[nodiscard]] const Service& service(unsigned number) const {
        return services.at(number - 1);
    }
    [[nodiscard]] Service& service(unsigned number) {
        return services.at(number - 1);
    }
    /// @}

    /// Of all GEM ports, from the ONT and to it.
    /// @{
    [[nodiscard]] LinkTraffic received() const;
    [[nodiscard]] LinkTraffic sent() const;
    /// @}

    std::array<Service, 8> services;
    FlowTally broadcast;
    double seconds = 0;        ///< in service
    double granted_octets = 0; ///< upstream
    double wrong_bits_up = 0;  ///< before error correction
    double wrong_bits_down = 0;
    FecTally fec_up;
    FecTally fec_down;
    unsigned provisionings = 0;     ///< times the ONT was provided with its services,
    unsigned provided_services = 0; ///< how many in all of them
};

/// An ONT in service, as it is counted.
struct MeteredOnt {
    const Circumstances& given;
    const PhysicalOnt& hardware;
    const OntSettings& settings;
    unsigned split;
    LineConditions line;
    PlantTime since; ///< in service, with these settings
    const OntUsage& usage;
    OntTraffic traffic = {given, hardware, settings, since, usage};
};

/// Counts an ONT from its activation on. Only events are stored; between them the counts are worked out when they are
/// asked for.
class OntMeter {
public:
    /// The counts at a time of the present service, at which it was counted or later.
    [[nodiscard]] OntTally read(const MeteredOnt& ont, PlantTime time) const;
    /// The counts of the past services of an ONT that is in none; null without such.
    [[nodiscard]] const OntTally* counted() const {
        return counted_.get();
    }

    /// The ONT goes on under other conditions than those of `ont`, or is used otherwise.
    void conditions_change(const MeteredOnt& ont, PlantTime now);
    /// The service ends; what was counted goes into the next.
    void service_ends(const MeteredOnt& ont, PlantTime now);
    /// Counts up to a time, whatever becomes unknown of the time before.
    void settle(const MeteredOnt& ont, PlantTime time);
    /// The ONT has to be activated anew.
    void reset();

    template <class Archive>
    void archive(Archive& state) {
        bool has_counted = counted_ != nullptr;
        state(has_counted, counted_until_, parts_);
        if (has_counted) {
            auto tally = counted_ == nullptr ? OntTally{} : *counted_;
            state(tally);
            counted_ = std::make_shared<const OntTally>(tally);
        }
    }

private:
    /// A past part of the present service.
    struct Part {
        PlantTime until;
        LineConditions line;
        OntUsage usage;

        template <class Archive>
        void archive(Archive& state) {
            state(until, line, usage);
        }
    };

    void count_until(const MeteredOnt& ont, PlantTime time);

    std::shared_ptr<const OntTally> counted_; ///< until `counted_until_`; null: nothing
    PlantTime counted_until_{};
    std::vector<Part> parts_;
};

} // namespace xpon::simulator
