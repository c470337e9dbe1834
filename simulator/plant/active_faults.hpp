#pragma once

#include "simulator/plant/fault_kinds.hpp"
#include "simulator/plant/plant_time.hpp"

#include <optional>
#include <string>
#include <vector>

namespace xpon::simulator {

struct Fault {
    FaultKind kind{};
    FaultTarget target{};
    double value = 0;
    PlantTime until = never;

    /// As the target's text: names in it live in this process only.
    template <class Archive>
    void archive(Archive& state) {
        auto text = to_text(target);
        state(kind, text, value, until);
        if constexpr (Archive::reads) {
            std::string complaint;
            target = parse_target(rule_of(kind), text, complaint).value_or(target);
        }
    }
};

/// The faults that are injected now; one at most for a kind and target.
class ActiveFaults {
public:
    /// Takes the place of one of the same kind and target.
    void set(const Fault& fault);
    /// False when there was none.
    bool clear(FaultKind kind, const FaultTarget& target);
    void clear_all();

    [[nodiscard]] const Fault* find(FaultKind kind, const FaultTarget& target) const;
    [[nodiscard]] bool has(FaultKind kind, const FaultTarget& target) const {
        return find(kind, target) != nullptr;
    }
    /// How many there are of the kind.
    [[nodiscard]] std::size_t count(FaultKind kind) const;

    /// When the next one ends by itself.
    [[nodiscard]] PlantTime next_end() const;
    /// Removes those that end at or before `now`, and returns them.
    std::vector<Fault> take_ended(PlantTime now);

    [[nodiscard]] const std::vector<Fault>& all() const {
        return faults_;
    }

    template <class Archive>
    void archive(Archive& state) {
        state(faults_);
    }

private:
    std::vector<Fault> faults_;
};

} // namespace xpon::simulator
