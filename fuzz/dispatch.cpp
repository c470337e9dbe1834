// Whole requests of an administrator, whose session id is "1", through dispatch and every handler, over a device that
// has a bit of everything. Every frame is answered, and the service then serves the next input as if there had been
// none before.

#include "api_service/protocol/route_table.hpp"
#include "fuzz/service_in_process.hpp"
#include "tests/service/fake_device.hpp"
#include "xpon/core/json_tree.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace {

using namespace xpon;

std::unique_ptr<fuzz::ServiceInProcess> daemon_under_fuzz;

/// What only reads, and whatever else leaves the configuration and the session alone.
bool changes_nothing(std::string_view input) {
    return std::ranges::none_of(std::initializer_list<std::string_view>{"set", "del", "gen", "com", "unauth", "\\"},
                                [&](auto word) { return input.find(word) != std::string_view::npos; });
}

} // namespace

// NOLINTBEGIN(readability-identifier-naming): the names are libFuzzer's
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

/// Now and then sends a request to another route, which bytes alone seldom hit.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                               unsigned seed) {
    const core::JsonTree tree(cJSON_ParseWithLength(reinterpret_cast<const char*>(data), size));
    if (seed % 8 == 0 && cJSON_IsObject(tree.get()) != 0) {
        const auto routes = api_service::route_table();
        const auto& row = routes[seed / 8 % routes.size()];
        for (const auto& [key, text] : {std::pair{"path", row.path}, {"method", row.method}, {"session_id", "1"}}) {
            cJSON_DeleteItemFromObjectCaseSensitive(tree.get(), key);
            cJSON_AddStringToObject(tree.get(), key, text);
        }
        const auto printed = core::print_line(tree.get());
        const auto length = std::strlen(printed.get()) + 1;
        if (length <= max_size) {
            std::memcpy(data, printed.get(), length);
            return length;
        }
    }
    return LLVMFuzzerMutate(data, size, max_size);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    test::fake_device() = test::filled_device();
    if (!daemon_under_fuzz) {
        daemon_under_fuzz = std::make_unique<fuzz::ServiceInProcess>(std::make_shared<test::FakePeers>());
    }
    daemon_under_fuzz->serve(input);
    if (!changes_nothing(input)) {
        daemon_under_fuzz.reset();
    }
    return 0;
}
// NOLINTEND(readability-identifier-naming)
