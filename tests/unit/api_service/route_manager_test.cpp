#include "api_service/protocol/route_manager.hpp"
#include "tests/support/recording_logger.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

RouteHandler route(PrivilegeLevel privilege) {
    return {Handler(), privilege, {}};
}

TEST(RouteManager, MatchesPathAndMethodExactly) {
    const auto logger = std::make_shared<test::RecordingLogger>();
    RouteManager routes(logger);
    EXPECT_TRUE(routes.add_route("a.b", "get", route(PrivilegeLevel::Viewer)));
    EXPECT_TRUE(routes.add_route("a", "set", route(PrivilegeLevel::Viewer)));
    EXPECT_TRUE(routes.add_route("a.b", "get", route(PrivilegeLevel::Operator)));

    EXPECT_EQ(routes.lookup_route("a.b", "get").value().privilege, PrivilegeLevel::Operator) << "the second replaces";
    EXPECT_EQ(routes.lookup_route("a.b", "set").error().code, core::Error::Empty);
    EXPECT_EQ(routes.lookup_route("A.b", "get").error().code, core::Error::Empty);
    EXPECT_THAT(logger->texts(), testing::ElementsAre("Method set not found for path a.b", "Path A.b not found"));
}

TEST(PrivilegeLevel, HasNames) {
    EXPECT_EQ(to_string(PrivilegeLevel::Nothing), "nothing");
    EXPECT_EQ(to_string(PrivilegeLevel::Viewer), "viewer");
    EXPECT_EQ(to_string(PrivilegeLevel::Operator), "operator");
    EXPECT_EQ(to_string(PrivilegeLevel::Administrator), "administrator");
    EXPECT_EQ(to_string(static_cast<PrivilegeLevel>(7)), "unknown");
}

} // namespace
} // namespace xpon::api_service
