// oltctl knows no library of the platform: what it holds of the service's tables must agree with them.

#include "api_service/protocol/route_table.hpp"
#include "cfgdb/element.hpp"
#include "client/oltctl/configuration/elements.hpp"

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace xpon::oltctl {
namespace {

TEST(Elements, AreThoseOfTheService) {
    std::set<std::string> known;
    for (const auto& element : elements()) {
        EXPECT_TRUE(known.insert(element.path).second) << element.path << " is there twice";
    }
    for (const auto& element : cfgdb::all_elements()) {
        const auto path = std::string("configuration.") + element.path;
        const auto* const ours = find_element(path);
        ASSERT_NE(ours, nullptr) << path << " is missing in client/oltctl/configuration/elements.cpp";
        known.erase(path);
        std::optional<std::string> writer;
        unsigned levels = element.depth;
        for (const auto& route : api_service::route_table()) {
            if (route.path == path && std::string_view(route.method) == "set") {
                writer = to_string(route.privilege);
            }
            // The pre-hook makes one index of two.
            levels +=
                route.path == path && std::string_view(route.method) == "get" && !route.make_pre_hooks({}).empty();
        }
        EXPECT_EQ(ours->depth(), levels) << path;
        EXPECT_EQ(ours->writer == nullptr ? std::nullopt : std::optional<std::string>(ours->writer), writer) << path;
    }
    EXPECT_TRUE(known.empty()) << *known.begin() << " is no element of the service";
}

} // namespace
} // namespace xpon::oltctl
