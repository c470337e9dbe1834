// Lack of memory: whichever allocation of the JSON library fails, the client gets an answer and nothing leaks.

#include "api_service/protocol/route_table.hpp"
#include "tests/service/monitoring_fixture.hpp"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include <cjson/cJSON.h>
#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

std::atomic<long> allocations_until_failure{0}; // 0 = none fails
std::atomic<long> blocks_in_use{0};

void* allocate(std::size_t size) {
    if (allocations_until_failure > 0 && --allocations_until_failure == 0) {
        return nullptr;
    }
    ++blocks_in_use;
    return std::malloc(size);
}

void release(void* block) {
    blocks_in_use -= block == nullptr ? 0 : 1;
    std::free(block);
}

/// Lets cJSON take its memory from the two functions above.
class CountedJsonMemory {
public:
    CountedJsonMemory() {
        cJSON_Hooks hooks{.malloc_fn = allocate, .free_fn = release};
        cJSON_InitHooks(&hooks);
    }
    CountedJsonMemory(const CountedJsonMemory&) = delete;
    CountedJsonMemory& operator=(const CountedJsonMemory&) = delete;
    ~CountedJsonMemory() {
        cJSON_InitHooks(nullptr);
    }
};

class AllocationFailure : public MonitoringTest {
protected:
    /// A request that the route serves with success, as far as one request alone can.
    static std::string request_for(const api_service::RouteRow& row, const std::string& session_id) {
        const std::string_view path = row.path;
        const std::pair<std::string_view, const char*> members[] = {
            {"auth", R"("data":{"user":"viewer","password":"viewer"})"},
            {"configuration.ZebGCfg.pon.ont", R"("indices":["1","1-2"],"data":{})"},
            {"monitoring.interface.front_port", R"("indices":["1-4"])"},
            {"monitoring.interface.pon_port", R"("indices":["1-3"])"},
            {"monitoring.interface.ont.counters", R"("indices":["1","1"])"},
            {"monitoring.mac", R"("indices":["1"])"},
            {"command.reconfigure.pon_port", R"("indices":["1"])"},
            {"command.reconfigure.ont", R"("indices":["1/1"])"},
            {"command.resettodefault.ont", R"("indices":["1/1"])"},
            {"command.reboot.ont", R"("indices":["1/1"])"},
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

TEST_F(AllocationFailure, AlwaysLeadsToAnAnswerAndLeaksNothing) {
    const CountedJsonMemory memory;
    for (const auto& row : api_service::route_table()) {
        configure(); // the commands of the rows before have changed it
        bool failed = true;
        std::string answer;
        for (long n = 1; failed; ++n) {
            ASSERT_LT(n, 10'000);
            const auto frame = request_for(row, log_in("admin"));
            ask(R"({"path":"test.echo","method":"echo"})"); // the answer before is gone from the service
            const long before = blocks_in_use;
            allocations_until_failure = n;
            answer = exchange(connection, frame);
            failed = allocations_until_failure <= 0;
            allocations_until_failure = 0;
            EXPECT_THAT(answer, testing::StartsWith("{\n\t\"success\":\t")) << frame << " at allocation " << n;
            ask(R"({"path":"test.echo","method":"echo"})");
            EXPECT_EQ(blocks_in_use, before) << frame << " at allocation " << n;
        }
        if (!std::string_view(row.path).starts_with("configuration.") || row.method == std::string_view("generate")) {
            EXPECT_THAT(answer, testing::StartsWith("{\n\t\"success\":\ttrue")) << row.path;
        }
    }
}

} // namespace
} // namespace xpon::test
