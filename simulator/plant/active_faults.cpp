#include "simulator/plant/active_faults.hpp"

#include <algorithm>

namespace xpon::simulator {

void ActiveFaults::set(const Fault& fault) {
    clear(fault.kind, fault.target);
    faults_.push_back(fault);
}

bool ActiveFaults::clear(FaultKind kind, const FaultTarget& target) {
    return std::erase_if(faults_, [&](const Fault& fault) { return fault.kind == kind && fault.target == target; }) !=
           0;
}

void ActiveFaults::clear_all() {
    faults_.clear();
}

const Fault* ActiveFaults::find(FaultKind kind, const FaultTarget& target) const {
    const auto found =
        std::ranges::find_if(faults_, [&](const Fault& fault) { return fault.kind == kind && fault.target == target; });
    return found == faults_.end() ? nullptr : &*found;
}

std::size_t ActiveFaults::count(FaultKind kind) const {
    return static_cast<std::size_t>(std::ranges::count(faults_, kind, &Fault::kind));
}

PlantTime ActiveFaults::next_end() const {
    const auto next = std::ranges::min_element(faults_, {}, &Fault::until);
    return next == faults_.end() ? never : next->until;
}

std::vector<Fault> ActiveFaults::take_ended(PlantTime now) {
    std::vector<Fault> ended;
    std::ranges::copy_if(faults_, std::back_inserter(ended), [&](const Fault& fault) { return fault.until <= now; });
    std::erase_if(faults_, [&](const Fault& fault) { return fault.until <= now; });
    return ended;
}

} // namespace xpon::simulator
