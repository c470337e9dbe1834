#include "serializer/field_builders.hpp"
#include "xpon/peer_side/gpon_rates.hpp"

#include <iterator>

namespace xpon::serializer {
namespace {

using cfgdb::ProfileOntShaping;
using cfgdb::ShapingQueue;

constexpr const char* scheduling_names[] = {"strict", "weighted"};

constexpr Field queue_fields[] = {
    enumeration(XPON_MEMBER(ShapingQueue, scheduling), scheduling_names, ShapingQueue::Scheduling::strict),
    number(XPON_MEMBER(ShapingQueue, weight), 1, 255, 1),
    number(XPON_MEMBER(ShapingQueue, min_kbps), 0, gpon_downstream_kbps, 0),
    number(XPON_MEMBER(ShapingQueue, max_kbps), 0, gpon_downstream_kbps, 0),
    number(XPON_MEMBER(ShapingQueue, upstream_max_kbps), 0, gpon_upstream_kbps, 0),
};
constexpr Table queue = make_table<ShapingQueue>("ShapingQueue", queue_fields);

constexpr Field fields[] = {
    name(XPON_MEMBER(ProfileOntShaping, name)),
    number(XPON_MEMBER(ProfileOntShaping, downstream_kbps), 0, gpon_downstream_kbps, 0),
    number(XPON_MEMBER(ProfileOntShaping, upstream_kbps), 0, gpon_upstream_kbps, 0),
    number(XPON_MEMBER(ProfileOntShaping, downstream_burst_bytes), 2000, 16777216, 65536),
    array(XPON_MEMBER(ProfileOntShaping, queues), queue),
};

void rules(const ProfileOntShaping& profile, Contradictions& contradictions) {
    std::uint64_t committed_kbps = 0;
    for (std::size_t i = 0; i < std::size(profile.queues); ++i) {
        const auto& entry = profile.queues[i];
        committed_kbps += entry.min_kbps;
        if (entry.max_kbps != 0 && entry.min_kbps > entry.max_kbps) {
            contradictions.add_in("queues", i, "max_kbps", "min_kbps is greater than max_kbps");
        }
    }
    if (profile.downstream_kbps != 0 && committed_kbps > profile.downstream_kbps) {
        contradictions.add("queues", "the sum of min_kbps exceeds downstream_kbps");
    }
}

constexpr Table table =
    make_table<ProfileOntShaping>("ProfileOntShaping", fields, record_rules<ProfileOntShaping, rules>, "shaping");

} // namespace

template <>
const Table& record_table<ProfileOntShaping>() {
    return table;
}

} // namespace xpon::serializer
