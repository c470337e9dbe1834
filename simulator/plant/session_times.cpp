#include "simulator/plant/session_times.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

/// How long the network may be away before the peers, whose echo requests find no answer, give a session up.
constexpr PlantTime echo_patience = 90s;

/// Adds the sessions of a stretch in which the network does not refuse them.
void add_sessions(std::vector<SessionTime>& sessions, const Stretch& allowed, PlantTime delay,
                  const std::vector<Stretch>& uplinks) {
    const auto first = sessions.size();
    for (const auto& uplink : uplinks) {
        const Stretch way{std::max(uplink.since, allowed.since), std::min(uplink.until, allowed.until)};
        if (way.since >= way.until) {
            continue;
        }
        const bool goes_on = sessions.size() > first && way.since < sessions.back().open.until;
        const auto since = goes_on ? way.since : way.since + delay;
        if (since >= way.until) {
            continue;
        }
        if (!goes_on) {
            sessions.push_back({.open = {since, never}, .usable = {}});
        }
        auto& session = sessions.back();
        session.usable.push_back({since, way.until});
        session.open.until = way.until == never ? never : std::min(way.until + echo_patience, allowed.until);
    }
}

} // namespace

std::vector<SessionTime> session_times(PlantTime begin, PlantTime delay, const std::vector<Stretch>& uplinks,
                                       const std::vector<Stretch>& blocks) {
    std::vector<SessionTime> sessions;
    for (const auto& block : blocks) {
        if (block.since > begin) {
            add_sessions(sessions, {begin, block.since}, delay, uplinks);
        }
        begin = std::max(begin, block.until);
    }
    if (begin != never) {
        add_sessions(sessions, {begin, never}, delay, uplinks);
    }
    return sessions;
}

} // namespace xpon::simulator
