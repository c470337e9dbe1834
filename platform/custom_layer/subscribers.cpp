#include "xpon/custom_layer/subscribers.h"

#include "custom_layer/peer_request.hpp"
#include "xpon/peer_side/bits.hpp"
#include "xpon/peer_side/operations.hpp"
#include "xpon/ranges/vlan_range.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <limits>
#include <vector>

using namespace xpon;
using namespace xpon::custom_layer;
using peer_side::Operation;

namespace {

using Clock = std::chrono::steady_clock;

/// What the IGMP daemon said when it was last asked. The process has one such daemon, and its call no other place to
/// keep this between the VLANs of a walk.
struct IgmpAnswer {
    Bitmap_vlan snooping{};
    std::vector<Igmp_group> groups{}; ///< ascending by VLAN
    Clock::time_point received_at{};
    std::uint16_t last_vlan = max_vlan_id; ///< that was read from it; the last there is when there is no answer

    [[nodiscard]] bool serves(std::uint16_t vlan) const {
        static constexpr std::chrono::seconds longest_walk{1};
        return vlan > last_vlan && Clock::now() - received_at < longest_walk;
    }
};

IgmpAnswer& kept_answer() {
    static IgmpAnswer answer;
    return answer;
}

IgmpAnswer ask_igmp(Ipc* ipc) {
    struct Groups {
        std::uint32_t count;
        Igmp_group* entries;
    };
    IgmpAnswer answer{.snooping = fetch_record<Bitmap_vlan>(ipc, Operation::get_igmp_snooping_vlans, no_question())};
    Groups* block = nullptr;
    if (ask_list<Igmp_group>(ipc, Operation::get_igmp_groups, no_question(), &block) != 0) {
        core::fail_with(errno);
    }
    const CBlock<Groups> owner(block);
    const std::span groups(block->entries, block->count);
    const bool fits = groups.size() <= std::numeric_limits<decltype(Igmp_vlan_info::group_count)>::max();
    if (!fits || !std::ranges::is_sorted(groups, {}, &Igmp_group::vlan)) {
        core::fail_with(EIO);
    }
    answer.groups.assign(groups.begin(), groups.end());
    answer.received_at = Clock::now();
    return answer;
}

/// A malloc block with the VLAN's groups.
Igmp_vlan_info* copy_vlan(const IgmpAnswer& answer, std::uint16_t vlan) {
    static_assert(sizeof(Igmp_vlan_info) % alignof(Igmp_group) == 0);
    const auto [first, last] = std::ranges::equal_range(answer.groups, vlan, {}, &Igmp_group::vlan);
    const auto count = static_cast<std::size_t>(last - first);
    auto info = make_block<Igmp_vlan_info>(count * sizeof(Igmp_group));
    info->vlan = vlan;
    info->is_snooping = has_bit(answer.snooping.bits, vlan) ? 1 : 0;
    info->group_count = static_cast<std::uint16_t>(count);
    info->groups = reinterpret_cast<Igmp_group*>(info.get() + 1);
    std::copy(first, last, info->groups);
    return info.release();
}

} // namespace

int custom_layer__get_dhcp_session(Ipc* ipc, Dhcp_get_sessions_msg** out) {
    return ask_list<Dhcp_session>(ipc, Operation::get_dhcp_sessions, no_question(), out);
}

int custom_layer__get_pppoe_session(Ipc* ipc, Pppoe_get_sessions_msg** out) {
    return ask_list<Pppoe_session>(ipc, Operation::get_pppoe_sessions, no_question(), out);
}

int custom_layer__get_igmp_snooping_groups_unsafe(Ipc* ipc, std::uint16_t vlan, Igmp_vlan_info** out) {
    return core::c_function(out, [&] {
        if (ipc == nullptr) {
            core::fail_with(EINVAL);
        }
        if (vlan == 0 || vlan > max_vlan_id) {
            core::fail_with(ERANGE);
        }
        auto& answer = kept_answer();
        if (!answer.serves(vlan)) {
            answer = {}; // what follows may fail
            answer = ask_igmp(ipc);
        }
        answer.last_vlan = vlan;
        return copy_vlan(answer, vlan);
    });
}

int custom_layer__get_mac_table(Ipc* ipc, Bcm_get_mac_table_response** out) {
    return ask_list<Bcm_mac_entry>(ipc, Operation::get_mac_table, no_question(), out);
}

int custom_layer__get_mac_table_by_ont_range(Ipc* ipc, const Bitmap_ont_range* range,
                                             Bcm_get_mac_table_response** out) {
    return ask_list<Bcm_mac_entry>(ipc, Operation::get_mac_table_of_onts, question_at(range), out);
}
