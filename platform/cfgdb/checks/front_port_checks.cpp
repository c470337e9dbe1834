#include "cfgdb/checks/checks.hpp"
#include "cfgdb/checks/fault_texts.hpp"
#include "ranges/board_ports.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <functional>

namespace xpon::cfgdb {
namespace {

/// The enabled channels with their positions from 0.
void for_each_channel(const CheckContext& context,
                      const std::function<void(std::uint16_t position, const PortChannel& channel)>& visit) {
    for (std::uint16_t position = 0; position < element(element_of<PortChannel>).sizes[0]; ++position) {
        const auto channel = context.records.running<PortChannel>(position);
        if (channel.enabled != 0) {
            visit(position, channel);
        }
    }
}

std::vector<std::uint16_t> members_of(const PortChannel& channel) {
    std::vector<std::uint16_t> members; // from 1
    for (auto rest = channel.members; rest != 0; rest &= rest - 1) {
        members.push_back(static_cast<std::uint16_t>(std::countr_zero(rest) + 1));
    }
    return members;
}

/// What the members of a channel have in common.
struct CommonField {
    const char* key;
    bool (*is_equal)(const FrontPort& left, const FrontPort& right);
};

constexpr std::array common_fields{
    CommonField{"speed", [](const FrontPort& left, const FrontPort& right) { return left.speed == right.speed; }},
    CommonField{"max_frame_size", [](const FrontPort& left,
                                     const FrontPort& right) { return left.max_frame_size == right.max_frame_size; }},
    CommonField{"pvid", [](const FrontPort& left, const FrontPort& right) { return left.pvid == right.pvid; }},
    CommonField{"tagged_vlans",
                [](const FrontPort& left, const FrontPort& right) {
                    return std::ranges::equal(left.tagged_vlans, right.tagged_vlans);
                }},
};

void check_agreement(const CheckContext& context, const RecordId& where, const std::vector<std::uint16_t>& members) {
    if (members.empty()) {
        return;
    }
    const auto port_of = [&](std::uint16_t number) {
        return context.records.running<FrontPort>(static_cast<std::uint16_t>(number - 1));
    };
    const auto first = port_of(members.front());
    for (const auto number : members) {
        const auto port = port_of(number);
        for (const auto& field : common_fields) {
            if (!field.is_equal(first, port)) {
                context.faults.add(where, fault_text::ports_differ, members.front(), number, field.key);
            }
        }
    }
}

} // namespace

void check_channel_ports(const CheckContext& context) {
    std::array<unsigned, 33> channel_of{}; // by port number; 0 = none
    for_each_channel(context, [&](std::uint16_t position, const PortChannel& channel) {
        for (const auto port : members_of(channel)) {
            if (channel_of[port] != 0) {
                context.faults.add(id_of<PortChannel>(position), fault_text::port_taken, port, channel_of[port]);
            } else {
                channel_of[port] = position + 1U;
            }
        }
    });
}

void check_channel_members(const CheckContext& context) {
    for_each_channel(context, [&](std::uint16_t position, const PortChannel& channel) {
        const auto where = id_of<PortChannel>(position);
        auto members = members_of(channel);
        if (members.size() < channel.min_links) {
            context.faults.add(where, fault_text::too_few_members, members.size(), channel.min_links);
        }
        std::erase_if(members, [&](std::uint16_t port) {
            const bool is_missing = port > ranges::board_uplink_ports();
            if (is_missing) {
                context.faults.add(where, fault_text::no_such_port, port);
            }
            return is_missing;
        });
        check_agreement(context, where, members);
    });
}

} // namespace xpon::cfgdb
