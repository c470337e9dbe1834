#include "simulator/plant/pppoe_blocks.hpp"

#include <algorithm>
#include <iterator>

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

void PppoeBlocks::end_session(const OntPosition& ont, unsigned service, PlantTime now) {
    auto& blocks = blocks_[{ont, service}];
    if (blocks.empty() || blocks.back().until != never) {
        blocks.push_back({now, now});
    }
}

std::optional<PlantTime> PppoeBlocks::end_of_oldest_half() const {
    constexpr std::size_t most_blocks = 256;
    for (const auto& [service, blocks] : blocks_) {
        if (blocks.size() > most_blocks) {
            return blocks[blocks.size() / 2].since;
        }
    }
    return std::nullopt;
}

void PppoeBlocks::forget_before(PlantTime time) {
    for (auto& [service, blocks] : blocks_) {
        const auto kept = std::ranges::find_if(blocks, [&](const Stretch& block) { return block.until >= time; });
        // The last one says when the present session may have begun.
        blocks.erase(blocks.begin(), std::min(kept, std::prev(blocks.end())));
    }
}

const std::vector<Stretch>& PppoeBlocks::of(const OntPosition& ont, unsigned service) const {
    static const std::vector<Stretch> none;
    const auto found = blocks_.find({ont, service});
    return found == blocks_.end() ? none : found->second;
}

} // namespace xpon::simulator
