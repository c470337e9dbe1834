#include "api_service/protocol/privilege_level.hpp"

namespace xpon::api_service {

std::string to_string(PrivilegeLevel level) {
    switch (level) {
    case PrivilegeLevel::Nothing:
        return "nothing";
    case PrivilegeLevel::Viewer:
        return "viewer";
    case PrivilegeLevel::Operator:
        return "operator";
    case PrivilegeLevel::Administrator:
        return "administrator";
    }
    return "unknown";
}

} // namespace xpon::api_service
