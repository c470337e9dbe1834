#include "api_service/protocol/route_table.hpp"
#include "tests/service/service_fixture.hpp"

#include <set>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using api_service::PrivilegeLevel;
using api_service::route_table;

class RouteTable : public ServiceTest {};

TEST_F(RouteTable, EveryRouteIsRefusedBelowItsPrivilegeAndReachedFromThereOn) {
    struct Caller {
        const char* user;
        PrivilegeLevel level;
    };
    for (const auto& [user, level] :
         {Caller{"", PrivilegeLevel::Nothing}, Caller{"viewer", PrivilegeLevel::Viewer},
          Caller{"operator", PrivilegeLevel::Operator}, Caller{"admin", PrivilegeLevel::Administrator}}) {
        for (const auto& row : route_table()) {
            const auto id = level == PrivilegeLevel::Nothing ? std::string() : log_in(user);
            const auto session = id.empty() ? std::string() : fmt::format(R"("session_id":"{}",)", id);
            const auto answer = ask(fmt::format(R"({{{}"path":"{}","method":"{}"}})", session, row.path, row.method));
            const auto where = fmt::format("{} {} as '{}'", row.method, row.path, user);
            if (level < row.privilege) {
                EXPECT_EQ(answer, access_denied(id)) << where;
            } else {
                EXPECT_NE(answer, access_denied(id)) << where;
            }
        }
    }
}

TEST(RouteTableRows, AreUniqueAndGuardWhatChangesTheDevice) {
    std::set<std::pair<std::string, std::string>> seen;
    for (const auto& row : route_table()) {
        EXPECT_TRUE(seen.emplace(row.path, row.method).second) << row.path << " " << row.method;
        const std::string_view method = row.method;
        if (method == "set" || method == "delete" || method == "command") {
            EXPECT_GE(row.privilege, PrivilegeLevel::Operator) << row.path;
        }
        const bool on_onts = std::string_view(row.path).starts_with("configuration.ZebGCfg.pon.ont");
        EXPECT_EQ(row.make_pre_hooks({}).size(), on_onts ? 1U : 0U) << row.path;
    }
}

} // namespace
} // namespace xpon::test
