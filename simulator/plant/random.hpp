#pragma once

#include <cstdint>
#include <initializer_list>

namespace xpon::simulator {

/// What a random value decides. Part of its key, so that values of different subjects do not follow each other.
enum class Purpose : std::uint64_t {
    ont_power = 1,
    ont_model,
    ont_serial,
    ont_distance,
    ont_response_time,
    ont_launch_power,
    ont_connectors,
    ont_day_phase,
    state_duration,
    power_on_time,
    discovery_collision,
    module_voltage,
    module_power,
    module_bias,
    module_serial,
    day_drift_phase,
    short_drift_phase,
    viewing_length,
    viewing_pattern,
    viewing_groups,
    subscriber_hosts,
    host_idleness,
    lease_delay,
    session_delay,
    session_numbers,
    membership_report,
    group_sources,
    traffic_curve,
    traffic_calls,
    user_port_quality,
    counter_rounding,
    ranging_drift,
    ont_clock,
    lease_renewal,
    stream_rate,
    retries,
    frame_losses,
    line_errors,
    error_bursts,
    ont_past,
    module_age,
    load_phase,
};

/// A random value that depends on its key alone (SplitMix64), never on who asks when: the same plant is the same
/// whatever is asked of it.
class Random {
public:
    explicit Random(std::uint64_t seed) : seed_(seed) {}

    [[nodiscard]] std::uint64_t number(Purpose purpose, std::initializer_list<std::uint64_t> key) const;
    /// In [0, 1).
    [[nodiscard]] double share(Purpose purpose, std::initializer_list<std::uint64_t> key) const;
    /// In [least, most).
    [[nodiscard]] double between(double least, double most, Purpose purpose,
                                 std::initializer_list<std::uint64_t> key) const;

private:
    std::uint64_t seed_;
};

} // namespace xpon::simulator
