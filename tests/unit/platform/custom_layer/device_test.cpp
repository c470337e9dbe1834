#include "tests/support/temporary_olt_root.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/peer_side/device_facts.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace xpon {
namespace {

using testing::ElementsAre;
using testing::StrEq;

Device_facts some_facts() {
    Device_facts facts{};
    std::memcpy(facts.magic, device_facts_magic.data(), sizeof facts.magic);
    facts.uptime_s = 3 * 86400 + 4 * 3600 + 5 * 60 + 6.9;
    return facts;
}

class DeviceTest : public testing::Test {
protected:
    void write(const Device_facts& facts, std::size_t size = sizeof(Device_facts)) const {
        root.write("run/device_facts", {reinterpret_cast<const char*>(&facts), size});
    }
    static std::string uptime() {
        char text[formatted_uptime_size];
        errno = 0;
        return custom_layer__get_formatted_uptime_str(text) == 0 ? text : std::to_string(errno);
    }
    static int errno_of_factory() {
        Factory_info factory;
        errno = 0;
        return custom_layer__get_factory_info(&factory) == 0 ? 0 : errno;
    }

    test::TemporaryOltRoot root;
};

TEST_F(DeviceTest, UptimeGoesOnAtTheClocksRate) {
    auto facts = some_facts();
    write(facts);
    EXPECT_EQ(uptime(), "3 days, 04:05:06");
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    facts.uptime_s = 0;
    facts.clock_rate = 1000;
    facts.written_at_ns = (std::int64_t{now.tv_sec} - 3600) * 1'000'000'000;
    write(facts);
    // An hour a thousand times as fast: 41 days, 16 hours, and what the test itself took.
    EXPECT_THAT(uptime(), testing::StartsWith("41 days, "));
    // A clock that went back counts as one that stood still.
    facts.written_at_ns = std::numeric_limits<std::int64_t>::max();
    write(facts);
    EXPECT_EQ(uptime(), "0 days, 00:00:00");
    facts.written_at_ns = std::numeric_limits<std::int64_t>::min();
    facts.clock_rate = 1e300;
    write(facts);
    EXPECT_LT(uptime().size(), formatted_uptime_size - 1);
}

TEST_F(DeviceTest, DoesNotTrustTheFile) {
    EXPECT_EQ(errno_of_factory(), ENODATA);
    EXPECT_EQ(uptime(), std::to_string(ENODATA));
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, sizeof(Device_facts) - 1}) {
        write(some_facts(), size);
        EXPECT_EQ(errno_of_factory(), EIO) << size;
    }
    const std::vector<std::function<void(Device_facts&)>> faults{
        [](auto& facts) { facts.magic[7] = '9'; },
        [](auto& facts) { std::memset(facts.factory.mac_address, 'x', sizeof facts.factory.mac_address); },
        [](auto& facts) { std::memset(facts.slots[1].version, 'x', sizeof facts.slots[1].version); },
        [](auto& facts) { facts.running_slot = 2; },
        [](auto& facts) { facts.uptime_s = std::numeric_limits<double>::quiet_NaN(); },
    };
    for (const auto& fault : faults) {
        auto facts = some_facts();
        fault(facts);
        write(facts);
        EXPECT_EQ(errno_of_factory(), EIO);
    }
}

TEST(ShortDeviceName, EndsAtTheFirstBlank) {
    char name[short_device_name_size];
    for (const auto& [factory, expected] :
         {std::pair("SIM-OLT-16 rev 1", "SIM-OLT-16"), {"SIM", "SIM"}, {"", ""}, {" x", ""}}) {
        ASSERT_EQ(convert_factory_device_name_to_short_device_name(factory, name), 0);
        EXPECT_STREQ(name, expected);
    }
    EXPECT_EQ(convert_factory_device_name_to_short_device_name(std::string(256, 'x').c_str(), name), -1);
    EXPECT_EQ(errno, EMSGSIZE);
}

TEST_F(DeviceTest, ListsLogsThatHoldSomething) {
    std::filesystem::create_directories(root.path() / "var/log/folder.log");
    for (const auto* name : {"pppoe.log", "events.log", "api-service.log", "notes.txt", "events.log.1", ".x.log"}) {
        root.write(std::string("var/log/") + name, "line\n");
    }
    root.write("var/log/igmp.log", "");
    char** names = nullptr;
    std::uint32_t count = 9;
    ASSERT_EQ(custom_layer__get_list_log_files(&root, 1, &names, &count), 0);
    EXPECT_THAT(std::span(names, count),
                ElementsAre(StrEq("api-service.log"), StrEq("events.log"), StrEq("pppoe.log")));
    std::for_each(names, names + count, std::free);
    std::free(names);
}

} // namespace
} // namespace xpon
