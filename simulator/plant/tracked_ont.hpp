#pragma once

#include "simulator/plant/ont_life.hpp"
#include "simulator/plant/ont_meter.hpp"

#include <optional>

namespace xpon::simulator {

struct Circumstances;
class Ports;

/// An ONT of the plant now.
struct OntNow {
    const PhysicalOnt* hardware;
    const OntSituation* situation;
    const OntSettings* settings; ///< of the configuration on the port where it is seen; null without
    OntPoint point;
    std::optional<Stretch> last_service; ///< the last one that has ended since the OLT's start
    bool has_local_data;                 ///< what its user set on the ONT itself
    const OntMeter* meter;
    const LineConditions* line;
    const OntUsage* usage;
};

/// One ONT through its life: where its way went on from at the last event, and what is counted of it. `given` is what
/// the plant is given.
class TrackedOnt {
public:
    /// Before the start nothing has power.
    explicit TrackedOnt(const PhysicalOnt& hardware);

    [[nodiscard]] OntNow describe(const Circumstances& given) const;
    [[nodiscard]] const OntPosition& position() const {
        return hardware_.position;
    }
    [[nodiscard]] const OntSituation& situation() const {
        return situation_;
    }
    [[nodiscard]] OntPoint point(const Circumstances& given) const;
    /// When its state ends if nothing happens; `never` if it does not.
    [[nodiscard]] PlantTime changes_at(const Circumstances& given) const;

    /// Something happened. True when it starts anew.
    bool follow(const Circumstances& given, const Ports& ports, const ReplacedSettings& replaced);
    /// It is told to do something, in a state in which it is listed. True when it starts anew.
    bool carry_out(const Circumstances& given, OntCommand command);
    void wait_in_discovery(std::uint16_t windows, const Random& random);
    /// If it is in service, it is counted up to the time, once and for all.
    void count_until(const Circumstances& given, PlantTime time);
    /// The OLT has booted.
    void forget_last_service() {
        last_service_.reset();
    }

    /// All but the hardware.
    template <class Archive>
    void archive(Archive& state) {
        state(situation_, anchor_, stay_, last_service_, has_local_data_, meter_, line_, usage_);
    }
    [[nodiscard]] const PhysicalOnt& hardware() const {
        return hardware_;
    }
    /// Its way into service, which it has begun at its start, begins at `since`, if that is later.
    void begin_later(PlantTime since, const Random& random);

private:
    [[nodiscard]] OntPace pace(const Random& random) const {
        return {random, position().port, position().ont};
    }
    /// After each change of `anchor_` and `situation_`.
    void look_ahead(const Random& random) {
        stay_ = end_of_walk(anchor_, situation_, pace(random));
    }
    /// Where it is; for one whose start lies ahead, that start.
    [[nodiscard]] OntPoint next_point(const Circumstances& given) const;
    [[nodiscard]] OntSituation situation_in(const Circumstances& given, const Ports& ports) const;
    [[nodiscard]] LineConditions line_in(const Circumstances& given, const Ports& ports, unsigned seen_port) const;
    /// `was` and `is`: where it is until now and from now on.
    /// @{
    void update_meter(const Circumstances& given, const OntPoint& was, const OntPoint& is, const LineConditions& line,
                      const ReplacedSettings& replaced);
    [[nodiscard]] MeteredOnt metered(const Circumstances& given, const OntSettings& settings, PlantTime since) const;
    void redirect(const OntPoint& was, const OntPoint& is, PlantTime now);
    /// @}

    PhysicalOnt hardware_;
    OntSituation situation_;
    OntPoint anchor_;              ///< where its way goes on from; may lie ahead
    std::optional<OntPoint> stay_; ///< where it leads to: nearly all are there, and need not walk to be found
    std::optional<Stretch> last_service_;
    bool has_local_data_ = true;
    OntMeter meter_;
    LineConditions line_;
    OntUsage usage_;
};

} // namespace xpon::simulator
