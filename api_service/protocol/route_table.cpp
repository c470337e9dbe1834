#include "api_service/protocol/route_table.hpp"

#include "api_service/auth/auth_handler.hpp"
#include "api_service/auth/unauth_handler.hpp"
#include "api_service/handlers/configuration/commit_handler.hpp"
#include "api_service/handlers/configuration/delete_handler.hpp"
#include "api_service/handlers/configuration/elements.hpp"
#include "api_service/handlers/configuration/get_handler.hpp"
#include "api_service/handlers/configuration/rollback_handler.hpp"
#include "api_service/handlers/configuration/set_handler.hpp"
#include "api_service/protocol/board.hpp"
#include "api_service/protocol/echo_handler.hpp"
#include "api_service/protocol/ont_indices_pre_hook.hpp"

#include <array>

namespace xpon::api_service {
namespace {

using namespace elements;
using enum PrivilegeLevel;

template <class Element>
Handler getter(const HandlerServices& services) {
    return ConfigurationGetHandler<typename Element::Record, Element::depth>(
        services.logger, Element::read_running, Element::read_candidate, Element::serialize);
}

template <class Element>
Handler setter(const HandlerServices& services) {
    return ConfigurationSetHandler<typename Element::Record, Element::depth>(services.logger, Element::write,
                                                                             Element::deserialize);
}

template <class Element>
Handler deleter(const HandlerServices& services) {
    return ConfigurationDeleteHandler<Element::depth>(services.logger, Element::initialise);
}

Handler echo(const HandlerServices& services) {
    return EchoHandler(services.logger);
}

Handler auth(const HandlerServices& services) {
    return AuthHandler(services.logger, services.session_manager, services.pam);
}

Handler unauth(const HandlerServices& services) {
    return UnauthHandler(services.logger, services.session_manager);
}

Handler commit(const HandlerServices& services) {
    return CommitHandler(services.logger, services.ipc);
}

Handler rollback(const HandlerServices& services) {
    return RollbackHandler(services.logger);
}

std::vector<PreHook> none(const HandlerServices&) {
    return {};
}

std::vector<PreHook> ont_indices(const HandlerServices& services) {
    return {OntIndicesPreHook(services.logger, board_pon_port_count)};
}

// The privileges are deliberately uneven: the ONT list and commit need only an operator, rollback an administrator.
constexpr std::array routes{
    // clang-format off
    RouteRow{"test.echo",                        "echo",    Nothing,       echo,                            none},
    RouteRow{"test.echo.view",                   "echo",    Viewer,        echo,                            none},
    RouteRow{"test.echo.admin",                  "echo",    Administrator, echo,                            none},
    RouteRow{"auth",                             "auth",    Nothing,       auth,                            none},
    RouteRow{"unauth",                           "auth",    Nothing,       unauth,                          none},
    RouteRow{"command.commit",                   "command", Operator,      commit,                          none},
    RouteRow{"command.rollback",                 "command", Administrator, rollback,                        none},
    RouteRow{"configuration.CommonGCfg.system.ntp", "get",  Viewer,        getter<CommonGCfg_system_ntp>,   none},
    RouteRow{"configuration.CommonGCfg.system.ntp", "set",  Administrator, setter<CommonGCfg_system_ntp>,   none},
    RouteRow{"configuration.ZebGCfg.pon.ont",    "get",     Viewer,        getter<ZebGCfg_pon_ont>,         ont_indices},
    RouteRow{"configuration.ZebGCfg.pon.ont",    "set",     Operator,      setter<ZebGCfg_pon_ont>,         ont_indices},
    RouteRow{"configuration.ZebGCfg.pon.ont",    "delete",  Operator,      deleter<ZebGCfg_pon_ont>,        ont_indices},
    RouteRow{"configuration.CommonGCfg.hostname", "get",    Viewer,        getter<CommonGCfg_hostname>,     none},
    RouteRow{"configuration.CommonGCfg.hostname", "set",    Administrator, setter<CommonGCfg_hostname>,     none},
    // clang-format on
};

} // namespace

std::span<const RouteRow> route_table() {
    return routes;
}

} // namespace xpon::api_service
