// Index texts: what parses must survive being written and parsed again, and be written the same way twice.

#include "api_service/protocol/index_range.hpp"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace xpon::api_service;

    const auto set = get_bitset_from_string_range({reinterpret_cast<const char*>(data), size});
    if (!set) {
        return 0;
    }
    const auto text = get_string_range_from_bitset(set.value());
    const auto again = get_bitset_from_string_range(text);
    if (set.value().none() || !again || again.value() != set.value() ||
        get_string_range_from_bitset(again.value()) != text) {
        std::abort();
    }
    return 0;
}
