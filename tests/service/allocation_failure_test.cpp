// Lack of memory: whichever allocation of the JSON library fails, the client gets an answer and nothing leaks.

#include "api_service/protocol/route_table.hpp"
#include "tests/service/service_fixture.hpp"

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

class AllocationFailure : public ServiceTest {
protected:
    /// A request that the route serves with success, as far as that is possible without a device.
    std::string request_for(const api_service::RouteRow& row, const std::string& id) const {
        const std::string_view path = row.path;
        const auto* const indices =
            path.starts_with("configuration.ZebGCfg.pon.ont") ? R"(,"indices":["1","1-2"])" : "";
        const auto* const data = path == "auth" ? R"({"user":"viewer","password":"viewer"})" : "{}";
        return fmt::format(R"({{"session_id":"{}","path":"{}","method":"{}"{},"config_type":"candidate","data":{}}})",
                           id, row.path, row.method, indices, data);
    }
};

TEST_F(AllocationFailure, AlwaysLeadsToAnAnswerAndLeaksNothing) {
    const CountedJsonMemory memory;
    for (const auto& row : api_service::route_table()) {
        bool failed = true;
        for (long n = 1; failed; ++n) {
            ASSERT_LT(n, 10'000);
            const auto frame = request_for(row, log_in("admin"));
            ask(R"({"path":"test.echo","method":"echo"})"); // the answer before is gone from the service
            const long before = blocks_in_use;
            allocations_until_failure = n;
            const auto answer = exchange(connection, frame);
            failed = allocations_until_failure <= 0;
            allocations_until_failure = 0;
            EXPECT_THAT(answer, testing::StartsWith("{\n\t\"success\":\t")) << frame << " at allocation " << n;
            ask(R"({"path":"test.echo","method":"echo"})");
            EXPECT_EQ(blocks_in_use, before) << frame << " at allocation " << n;
        }
    }
}

} // namespace
} // namespace xpon::test
