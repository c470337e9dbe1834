#include "ipc/ipc_handle.hpp"
#include "xpon/custom_layer/custom_layer.h"
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

using ipc::Operation;

/// An IGMP daemon that answers what a test wants.
struct IgmpDaemon : public Ipc {
    Reply request(ipc::Address peer, Operation operation, std::span<const std::byte> payload,
                  std::chrono::milliseconds) noexcept override {
        EXPECT_EQ(peer, ipc::peers::igmp);
        EXPECT_TRUE(payload.empty());
        ++requests;
        return operation == Operation::get_igmp_groups ? groups : vlans;
    }
    void notify_all(Operation, std::span<const std::byte>) noexcept override {}
    std::optional<Refusal> ask_all(Operation, std::span<const std::byte>, std::chrono::milliseconds) noexcept override {
        return std::nullopt;
    }

    void answer(const std::vector<Igmp_group>& list) {
        groups = {0, ipc::list_payload(std::span(list))};
    }
    void answer_snooping(std::uint16_t vlan) {
        Bitmap_vlan bitmap;
        prepare_bitmap_vlan(&bitmap);
        bitfield_set_bit(bitmap.bits, bitmap.size, vlan);
        vlans = {0, ipc::record_payload(bitmap)};
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
    [[nodiscard]] int refresh() {
        errno = 0;
        return custom_layer__refresh_igmp_snooping_groups(&daemon) == 0 ? 0 : errno;
    }

    IgmpDaemon daemon;
};

TEST_F(IgmpGroupsTest, AreReadByVlanFromOneAnswer) {
    ASSERT_EQ(refresh(), 0);
    const int asked = daemon.requests;
    EXPECT_THAT(read(201), testing::ElementsAre(1, 2));
    EXPECT_THAT(read(4094), testing::ElementsAre(9));
    EXPECT_THAT(read(1), testing::IsEmpty());
    EXPECT_EQ(errno, 0);
    for (const std::uint16_t vlan : std::vector<std::uint16_t>{0, 4095, 65535}) {
        read(vlan);
        EXPECT_EQ(errno, ERANGE) << vlan;
    }
    EXPECT_EQ(daemon.requests, asked);
}

TEST_F(IgmpGroupsTest, OnlyADaemonThatCannotBeAskedFailsTheRefresh) {
    for (const int cause : {ECONNREFUSED, ETIMEDOUT, EHOSTDOWN, ENOTCONN, ECONNRESET, EPROTO, EIO, ENOSPC}) {
        daemon.groups.status = cause;
        EXPECT_EQ(refresh(), cause == EIO || cause == ENOSPC ? 0 : cause);
        read(201);
        EXPECT_EQ(errno, cause); // nothing old is passed off as new
    }
    daemon.groups.status = 0;
    EXPECT_EQ(refresh(), 0);
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
        EXPECT_EQ(refresh(), 0);
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
    daemon.vlans.payload = ipc::record_payload(Bitmap_vlan{.size = 0xffffffff, .bits = {}});
    expect_unread();
}

} // namespace
} // namespace xpon
