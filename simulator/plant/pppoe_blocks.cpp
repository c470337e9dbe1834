#include "simulator/plant/pppoe_blocks.hpp"

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
        auto& blocks = blocks_[key];
        if (blocks.empty() || blocks.back().until != never) {
            blocks.push_back({now, never});
        }
    }
    for (const auto& [key, blocks] : ended) {
        if (blocks.back().until == never) {
            blocks_[key].back().until = now;
        }
    }
}

const std::vector<Stretch>& PppoeBlocks::of(const OntPosition& ont, unsigned service) const {
    static const std::vector<Stretch> none;
    const auto found = blocks_.find({ont, service});
    return found == blocks_.end() ? none : found->second;
}

} // namespace xpon::simulator
