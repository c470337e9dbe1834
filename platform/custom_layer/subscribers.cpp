#include "xpon/custom_layer/subscribers.h"

#include "custom_layer/peer_request.hpp"
#include "xpon/peer_side/operations.hpp"
#include "xpon/ranges/vlan_range.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

using namespace xpon::custom_layer;
using xpon::ipc::Operation;

namespace {

int fail(int cause) {
    errno = cause;
    return -1;
}

/// What the IGMP daemon said when it was last asked. The process has one such daemon, and its calls no other place to
/// keep this between them.
struct IgmpAnswer {
    int cause = ENODATA; ///< errno value with which reading it fails; 0: there is one
    Bitmap_vlan snooping{};
    std::vector<Igmp_group> groups{}; ///< ascending by VLAN
};

IgmpAnswer& kept_answer() {
    static IgmpAnswer answer;
    return answer;
}

/// Causes for which the daemon did not get to answer.
bool is_unreachable(int cause) {
    static constexpr std::array causes{ENOTCONN, ECONNREFUSED, ECONNRESET, ETIMEDOUT, EHOSTDOWN, EPROTO};
    return std::ranges::find(causes, cause) != causes.end();
}

/// 0 or the errno value of the failure.
int ask_igmp(Ipc* ipc, IgmpAnswer& answer) {
    struct Groups {
        std::uint32_t count;
        Igmp_group* entries;
    };
    if (ask_record(ipc, Operation::get_igmp_snooping_vlans, no_question(), &answer.snooping) != 0) {
        return errno;
    }
    Groups* block = nullptr;
    if (ask_list<Igmp_group>(ipc, Operation::get_igmp_groups, no_question(), &block) != 0) {
        return errno;
    }
    const std::unique_ptr<Groups, decltype(&std::free)> owner(block, std::free);
    const std::span groups(block->entries, block->count);
    const bool fits = groups.size() <= std::numeric_limits<decltype(Igmp_vlan_info::group_count)>::max();
    if (!fits || !std::ranges::is_sorted(groups, {}, &Igmp_group::vlan)) {
        return EIO;
    }
    answer.groups.assign(groups.begin(), groups.end());
    return 0;
}

/// A malloc block with the VLAN's groups.
Igmp_vlan_info* copy_vlan(const IgmpAnswer& answer, std::uint16_t vlan) {
    static_assert(sizeof(Igmp_vlan_info) % alignof(Igmp_group) == 0);
    const auto [first, last] = std::ranges::equal_range(answer.groups, vlan, {}, &Igmp_group::vlan);
    const auto count = static_cast<std::size_t>(last - first);
    void* const block = std::calloc(1, sizeof(Igmp_vlan_info) + count * sizeof(Igmp_group));
    if (block == nullptr) {
        return nullptr;
    }
    auto* const info = static_cast<Igmp_vlan_info*>(block);
    info->vlan = vlan;
    info->is_snooping = (answer.snooping.bits[vlan / 8] >> vlan % 8 & 1U) != 0 ? 1 : 0;
    info->group_count = static_cast<std::uint16_t>(count);
    info->groups = reinterpret_cast<Igmp_group*>(info + 1);
    std::copy(first, last, info->groups);
    return info;
}

} // namespace

int custom_layer__get_dhcp_session(Ipc* ipc, Dhcp_get_sessions_msg** out) {
    return ask_list<Dhcp_session>(ipc, Operation::get_dhcp_sessions, no_question(), out);
}

int custom_layer__get_pppoe_session(Ipc* ipc, Pppoe_get_sessions_msg** out) {
    return ask_list<Pppoe_session>(ipc, Operation::get_pppoe_sessions, no_question(), out);
}

int custom_layer__refresh_igmp_snooping_groups(Ipc* ipc) {
    if (ipc == nullptr) {
        return fail(EINVAL);
    }
    IgmpAnswer answer;
    answer.cause = ask_igmp(ipc, answer);
    kept_answer() = std::move(answer);
    const int cause = kept_answer().cause;
    return is_unreachable(cause) ? fail(cause) : 0;
}

int custom_layer__get_igmp_snooping_groups_unsafe(Ipc* ipc, std::uint16_t vlan, Igmp_vlan_info** out) {
    if (out == nullptr) {
        return fail(EINVAL);
    }
    *out = nullptr;
    if (ipc == nullptr) {
        return fail(EINVAL);
    }
    if (vlan == 0 || vlan > max_vlan_id) {
        return fail(ERANGE);
    }
    const auto& answer = kept_answer();
    if (answer.cause != 0) {
        return fail(answer.cause);
    }
    *out = copy_vlan(answer, vlan);
    return *out == nullptr ? fail(ENOMEM) : 0;
}

int custom_layer__get_mac_table(Ipc* ipc, Bcm_get_mac_table_response** out) {
    return ask_list<Bcm_mac_entry>(ipc, Operation::get_mac_table, no_question(), out);
}

int custom_layer__get_mac_table_by_ont_range(Ipc* ipc, const Bitmap_ont_range* range,
                                             Bcm_get_mac_table_response** out) {
    return ask_list<Bcm_mac_entry>(ipc, Operation::get_mac_table_of_onts, question_at(range), out);
}
