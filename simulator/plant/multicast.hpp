#pragma once

#include "simulator/plant/ont_layout.hpp"
#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/random.hpp"
#include "simulator/plant/running_configuration.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace xpon::simulator {

/// There are so many multicast groups; group n from 0 is the address 239.0.0.(n + 1).
inline constexpr unsigned multicast_groups = 64;

/// So many groups can be watched at a time behind one service.
inline constexpr unsigned most_joined_groups = 8;

struct JoinedGroups {
    std::uint8_t count = 0;
    std::array<std::uint8_t, most_joined_groups> group{}; ///< the first `count`, ascending

    bool operator==(const JoinedGroups&) const = default;
    [[nodiscard]] bool contains(std::uint8_t wanted) const;
    /// One that is not contained; there must be room.
    void add(std::uint8_t joined);
    /// One that is contained.
    void remove(std::uint8_t left);

    [[nodiscard]] std::span<const std::uint8_t> groups() const& {
        return std::span(group).first(count);
    }
    /// They lie in this object, so one that is about to end has none to give.
    std::span<const std::uint8_t> groups() const&& = delete;
};

/// A time in which an IPTV service has the same groups joined.
struct Viewing {
    PlantTime since;
    PlantTime until; ///< the next one begins
    JoinedGroups joined;
};

/// From `at` on the viewers have these groups joined, whatever they would watch; or watch what they like again.
struct GroupChoice {
    PlantTime at;
    std::optional<JoinedGroups> held;
};

/// What the ONT lets its viewers join; 0 = no limit.
struct ViewingLimits {
    explicit ViewingLimits(const OntSettings& settings);

    std::vector<std::uint8_t> groups; ///< those allowed, ascending
    unsigned most_groups;             ///< at a time
    double most_kbps;                 ///< of all of them at a time
};

/// The rate at which a group is sent, always the same.
double stream_kbps(const Random& random, std::uint8_t group);
/// Of all of them.
double stream_kbps(const Random& random, const JoinedGroups& joined);

/// Those of the wanted ones that may be joined together.
JoinedGroups admitted(const Random& random, const ViewingLimits& limits, const JoinedGroups& wanted);

/// Who watches television behind one IPTV service: every 10 to 30 minutes, each viewer after its own time, one or two
/// other groups, and the same again after most of a day. It watches all the time; what reaches it depends on the ONT's
/// being in service.
class Viewer {
public:
    /// `ont` is the place of the physical ONT, `service` counts from 1.
    Viewer(const Random& random, const OntPosition& ont, unsigned service, const ViewingLimits& limits);

    /// What is watched at the time of the viewers' own accord.
    [[nodiscard]] Viewing at(PlantTime time) const;

    /// What the streams that are watched by the time come to, counted from a fixed one, in kbit.
    [[nodiscard]] double kbit_until(PlantTime time) const;
    /// The highest rate of those watched at once.
    [[nodiscard]] double peak_kbps() const {
        return peak_kbps_;
    }

private:
    /// Viewings repeat after so many, so that sums over any time are quick.
    static constexpr unsigned cycle = 64;

    struct Choice {
        JoinedGroups joined;
        double kbps = 0;
        double kbit_before = 0; ///< of the viewings before it in the cycle
    };

    [[nodiscard]] Choice choose(const Random& random, const ViewingLimits& limits, unsigned nth) const;
    /// Counted from the one that was under way at the start; less before it.
    [[nodiscard]] std::int64_t viewing_at(PlantTime time) const;

    OntPosition ont_;
    unsigned service_;
    PlantTime length_;    ///< of a viewing
    PlantTime under_way_; ///< how much of viewing 0 was over at the start
    std::array<Choice, cycle> choices_{};
    double kbit_in_cycle_ = 0;
    double peak_kbps_ = 0;
};

/// What has been joined at a time behind one IPTV service: what its viewers watch, or testers have them join.
class Membership {
public:
    /// `choices`: ascending; must outlive this object.
    Membership(const Random& random, const OntPosition& ont, unsigned service, const ViewingLimits& limits,
               const std::vector<GroupChoice>& choices)
        : random_(random), limits_(limits), viewer_(random, ont, service, limits), choices_(choices) {}

    [[nodiscard]] Viewing at(PlantTime time) const;

private:
    Random random_;
    ViewingLimits limits_;
    Viewer viewer_;
    const std::vector<GroupChoice>& choices_;
};

} // namespace xpon::simulator
