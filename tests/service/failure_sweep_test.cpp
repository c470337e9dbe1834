// Sweeps over every route: whichever allocation, of the JSON library or of operator new, or call of the device fails,
// the client gets an answer and the next request finds all as it was.

#include "api_service/protocol/route_table.hpp"
#include "tests/service/failing_memory.hpp"
#include "tests/service/monitoring_fixture.hpp"

#include <algorithm>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;
using testing::HasSubstr;

class FailureSweep : public MonitoringTest {
protected:
    /// A request that the route serves with success, as far as one request alone can, but for one.
    static std::string request_for(const api_service::RouteRow& row, const std::string& session_id) {
        const std::string_view path = row.path;
        const std::pair<std::string_view, const char*> members[] = {
            {"auth", R"("data":{"user":"viewer","password":"viewer"})"},
            {"configuration.ZebGCfg.pon.ont", R"("indices":["1","1-2"],"data":{})"},
            // Whose fields are at fault, so that the client is told of each.
            {"configuration.CommonGCfg.system.ntp",
             R"("data":{"enabled":3,"servers":[{"address":"a b"}],"x":1,"x":2})"},
            {"monitoring.interface.front_port", R"("indices":["1-4"])"},
            {"monitoring.interface.pon_port", R"("indices":["1-3"])"},
            {"monitoring.interface.ont.counters", R"("indices":["1","1-2"])"},
            {"monitoring.mac", R"("indices":["1"])"},
            {"command.reconfigure.pon_port", R"("indices":["1"])"},
            {"command.reconfigure.ont", R"("indices":["1/1"])"},
            {"command.resettodefault.ont", R"("indices":["1/1"])"},
            {"command.reboot.ont", R"("indices":["1/1","2/1"])"},
            {"command.olt.firmware.update", R"("data":{"path":"/image"})"},
            {"utils.text", R"("data":{"text":""})"},
            {"utils.ont.find", R"("data":{"serial":[83,73,77,85,0,0,0,1,0,0]})"},
            {"", R"("data":{})"},
        };
        const auto* const found =
            std::ranges::find_if(members, [&](const auto& member) { return path.starts_with(member.first); });
        return fmt::format(R"({{"session_id":"{}","path":"{}","method":"{}","config_type":"candidate",{}}})",
                           session_id, row.path, row.method, found->second);
    }
};

class AllocationSweep : public FailureSweep, public testing::WithParamInterface<Memory> {};

/// The beginning of every one.
constexpr auto any_answer = "{\n\t\"success\":\t";

TEST_P(AllocationSweep, LeadsToAnAnswerAndLeaksNothing) {
    const CountedJsonMemory memory;
    for (const auto& row : api_service::route_table()) {
        configure(); // the commands of the rows before have changed it
        bool failed = true;
        std::string answer;
        int closed = 0;
        for (long n = 1; failed; ++n) {
            ASSERT_LT(n, 10'000);
            const auto frame = request_for(row, log_in("admin"));
            ask(R"({"path":"test.echo","method":"echo"})"); // the answer before is gone from the service
            const long before = CountedJsonMemory::blocks_in_use();
            {
                const FailingAllocation allocation(GetParam(), n);
                auto answered = exchange_or_close(frame);
                closed += answered ? 0 : 1;
                answer = std::move(answered).value_or(any_answer);
                failed = allocation.has_failed();
            }
            EXPECT_THAT(answer, testing::StartsWith(any_answer)) << frame << " at allocation " << n;
            ask(R"({"path":"test.echo","method":"echo"})");
            EXPECT_EQ(CountedJsonMemory::blocks_in_use(), before) << frame << " at allocation " << n;
        }
        // A request that there is no room to receive has no other answer than the end of its connection.
        EXPECT_LE(closed, GetParam() == Memory::objects ? 3 : 0) << row.path;
        if (!std::string_view(row.path).starts_with("configuration.") || row.method == std::string_view("generate")) {
            EXPECT_THAT(answer, testing::StartsWith("{\n\t\"success\":\ttrue")) << row.path;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Failing, AllocationSweep, testing::Values(Memory::json, Memory::objects));

TEST_F(FailureSweep, AFailingCallFailsTheRequest) {
    const std::pair<std::string_view, const char*> reasons[] = {
        {"monitoring.interface.front_port", "Failed to retrieve front port info"},
        {"monitoring.interface.pon_port", "Could not retrieve state for PON ports"},
        {"monitoring.interface.pon_port", "Could not retrieve extended information about PON-port plugged SFP modules"},
        {"monitoring.interface.pon_port", "Failed to retrieve pon port info"},
        {"monitoring.interface.ont.counters", "custom_layer__get_ont_information_by_index() failed: -1"},
        {"monitoring.ip.igmp", "Message: Error at receiving IGMP group info."},
    };
    int routes_of_the_device = 0;
    for (const auto& row : api_service::route_table()) {
        const std::string_view path = row.path;
        if (path == "unauth" || path == "monitoring.constants") { // whose answer is kept for good
            continue;
        }
        configure(); // the commands of the rows before have changed it
        const auto frame = request_for(row, id);
        device.calls = 0;
        const auto whole = ask(frame);
        const int calls = std::min(device.calls, 20); // the groups of each VLAN are asked for alike
        if (calls == 0) {
            continue;
        }
        ++routes_of_the_device;
        take_log();
        for (int call = 1; call <= calls; ++call) {
            device.calls = 0;
            device.failing_call = call;
            // A module without diagnostics is no failure; front port 1's are asked in the third call.
            const bool fails = path != "monitoring.interface.front_port.state" || (call != 3 && call != 7);
            EXPECT_EQ(ask(frame) == failure(row.path), fails) << path << " call " << call;
        }
        device.failing_call = 0;
        const auto log = take_log();
        EXPECT_THAT(log, Contains("C API function returned -1, errno=5")) << path;
        for (const auto& [route, text] : reasons) {
            if (path.starts_with(route)) {
                EXPECT_THAT(log, Contains(HasSubstr(text)));
            }
        }
        EXPECT_EQ(ask(frame), whole);
    }
    EXPECT_EQ(routes_of_the_device, 30);
}

} // namespace
} // namespace xpon::test
