#include "simulator/subscribers/pppoe_blocks.hpp"

namespace xpon::simulator {

void PppoeBlocks::follow(const ActiveFaults& faults, PlantTime now) {
    auto ended = blocks_;
    for (const auto& fault : faults.all()) {
        if (fault.kind != FaultKind::pppoe_blocked) {
            continue;
        }
        const auto& target = fault.target;
        const std::pair key(OntPosition{.port = target.port, .ont = target.ont}, unsigned{target.service});
        ended.erase(key);
        auto& block = blocks_.try_emplace(key, Stretch{now, never}).first->second;
        if (block.until != never) {
            block = {now, never};
        }
    }
    for (const auto& [key, block] : ended) {
        if (block.until == never) {
            blocks_[key].until = now;
        }
    }
}

const Stretch* PppoeBlocks::find(const OntPosition& ont, unsigned service) const {
    const auto found = blocks_.find({ont, service});
    return found == blocks_.end() ? nullptr : &found->second;
}

} // namespace xpon::simulator
