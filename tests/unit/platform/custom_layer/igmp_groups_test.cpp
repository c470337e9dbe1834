#include "ipc/ipc_handle.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/peer_side/operations.hpp"
#include "xpon/peer_side/payload.hpp"
#include "xpon/ranges/vlan_range.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include <gmock/gmock.h>

namespace xpon {
namespace {

using peer_side::Operation;

/// An IGMP daemon that answers what a test wants.
struct IgmpDaemon : public Ipc {
    [[nodiscard]] ipc::Address own_address() const noexcept override {
        return {};
    }
    Reply request(ipc::Address peer, std::uint16_t operation, std::span<const std::byte> payload,
                  std::chrono::milliseconds) noexcept override {
        EXPECT_EQ(peer, peer_side::peers::igmp);
        EXPECT_TRUE(payload.empty());
        ++requests;
        return Operation{operation} == Operation::get_igmp_groups ? groups : vlans;
    }
    void notify_all(std::uint16_t, std::span<const std::byte>) noexcept override {}
    std::optional<ipc::Address> ask_all(std::uint16_t, std::span<const std::byte>,
                                        std::chrono::milliseconds) noexcept override {
        return std::nullopt;
    }

    void answer(const std::vector<Igmp_group>& list) {
        groups = {0, peer_side::list_payload(std::span(list))};
    }
    void answer_snooping(std::uint16_t vlan) {
        Bitmap_vlan bitmap;
        prepare_bitmap_vlan(&bitmap);
        bitfield_set_bit(bitmap.bits, bitmap.size, vlan);
        vlans = {0, peer_side::record_payload(bitmap)};
    }

    Reply vlans;
    Reply groups;
    int requests = 0;
};

Igmp_group group_of(std::uint16_t vlan, std::uint8_t number) {
    Igmp_group group;
    std::memset(&group, 0, sizeof group);
    group.vlan = vlan;
    group.address[3] = number;
    return group;
}

class IgmpGroupsTest : public testing::Test {
protected:
    IgmpGroupsTest() {
        daemon.answer_snooping(201);
        daemon.answer({group_of(100, 1), group_of(201, 1), group_of(201, 2), group_of(4094, 9)});
    }
    /// Numbers of the VLAN's groups; empty with errno set where reading fails.
    std::vector<int> read(std::uint16_t vlan) {
        char anything = 0;
        auto* info = reinterpret_cast<Igmp_vlan_info*>(&anything);
        errno = 0;
        const int status = custom_layer__get_igmp_snooping_groups_unsafe(&daemon, vlan, &info);
        EXPECT_EQ(info != nullptr, status == 0);
        EXPECT_EQ(errno != 0, status != 0);
        const int cause = errno;
        std::vector<int> numbers;
        if (info != nullptr) {
            EXPECT_EQ(info->vlan, vlan);
            EXPECT_EQ(info->is_snooping, vlan == 201 ? 1 : 0);
            for (const auto& group : std::span(info->groups, info->group_count)) {
                EXPECT_EQ(group.vlan, vlan);
                numbers.push_back(group.address[3]);
            }
        }
        std::free(info);
        errno = cause;
        return numbers;
    }
    IgmpDaemon daemon;
};

TEST_F(IgmpGroupsTest, AWalkOverTheVlansReadsOneAnswerAndTheNextWalkANewOne) {
    constexpr int one_answer = 2; // the VLANs and the groups
    for (const int walk : {1, 2}) {
        EXPECT_THAT(read(1), testing::IsEmpty());
        EXPECT_EQ(errno, 0);
        EXPECT_THAT(read(201), testing::ElementsAre(1, 2));
        EXPECT_THAT(read(4094), testing::ElementsAre(9));
        EXPECT_EQ(daemon.requests, walk * one_answer);
    }
    read(201);
    read(201);
    EXPECT_EQ(daemon.requests, 4 * one_answer) << "a VLAN asked for again is asked anew";
    const int asked = daemon.requests;
    for (const std::uint16_t vlan : std::vector<std::uint16_t>{0, 4095, 65535}) {
        read(vlan);
        EXPECT_EQ(errno, ERANGE) << vlan;
    }
    EXPECT_EQ(daemon.requests, asked);
}

TEST_F(IgmpGroupsTest, NothingOldIsPassedOffAsNew) {
    read(1);
    for (auto* const answer : {&daemon.vlans, &daemon.groups}) {
        answer->status = ETIMEDOUT;
        read(1);
        EXPECT_EQ(errno, ETIMEDOUT);
        read(201); // beyond the VLAN that failed
        EXPECT_EQ(errno, ETIMEDOUT);
        answer->status = 0;
    }
    EXPECT_THAT(read(201), testing::SizeIs(2));
}

TEST_F(IgmpGroupsTest, HostileAnswersAreNotRead) {
    const std::function<void(Igmp_group&)> faults[] = {
        [](auto& group) { group.vlan = 0; },
        [](auto& group) { group.vlan = 4095; },
        [](auto& group) { group.vlan = 99; }, // out of order
        [](auto& group) { group.source_count = 9; },
        [](auto& group) { group.port_count = 25; },
        [](auto& group) {
            group.port_count = 24;
            group.ports[23].kind = static_cast<Switch_port_kind>(4);
        },
    };
    const auto expect_unread = [this] {
        read(201);
        EXPECT_EQ(errno, EIO);
    };
    for (const auto& fault : faults) {
        std::vector groups{group_of(100, 1), group_of(201, 1)};
        fault(groups.back());
        daemon.answer(groups);
        expect_unread();
    }
    daemon.answer(std::vector(65536, group_of(201, 1))); // more than can be counted
    expect_unread();
    daemon.answer({});
    daemon.vlans.payload = peer_side::record_payload(Bitmap_vlan{.size = 0xffffffff, .bits = {}});
    expect_unread();
}

} // namespace
} // namespace xpon
