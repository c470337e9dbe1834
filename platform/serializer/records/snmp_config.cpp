#include "serializer/field_builders.hpp"

#include <algorithm>
#include <span>
#include <string_view>

namespace xpon::serializer {
namespace {

using cfgdb::GSysSnmpCfg;
using cfgdb::SnmpAccess;
using cfgdb::SnmpCommunity;
using cfgdb::SnmpTrapTarget;
using cfgdb::SnmpUser;

constexpr const char* access_names[] = {"read", "read_write"};

constexpr Field community_fields[] = {
    text(XPON_MEMBER(SnmpCommunity, name), Characters::name, 1),
    enumeration(XPON_MEMBER(SnmpCommunity, access), access_names, SnmpAccess::read),
    ipv4(XPON_MEMBER(SnmpCommunity, source)),
    number(XPON_MEMBER(SnmpCommunity, source_prefix), 0, 32, 0),
};
constexpr Table community = make_table<SnmpCommunity>("SnmpCommunity", community_fields);

constexpr const char* security_level_names[] = {"no_auth_no_priv", "auth_no_priv", "auth_priv"};
constexpr const char* auth_protocol_names[] = {"md5", "sha1", "sha256"};
constexpr const char* priv_protocol_names[] = {"des", "aes128"};

constexpr Field user_fields[] = {
    text(XPON_MEMBER(SnmpUser, name), Characters::name, 1),
    enumeration(XPON_MEMBER(SnmpUser, security_level), security_level_names, SnmpUser::SecurityLevel::auth_priv),
    enumeration(XPON_MEMBER(SnmpUser, auth_protocol), auth_protocol_names, SnmpUser::AuthProtocol::sha1),
    secret(XPON_MEMBER(SnmpUser, auth_secret), 8),
    enumeration(XPON_MEMBER(SnmpUser, priv_protocol), priv_protocol_names, SnmpUser::PrivProtocol::aes128),
    secret(XPON_MEMBER(SnmpUser, priv_secret), 8),
    enumeration(XPON_MEMBER(SnmpUser, access), access_names, SnmpAccess::read),
};
constexpr Table user = make_table<SnmpUser>("SnmpUser", user_fields);

constexpr const char* version_names[] = {"v1", "v2c", "v3"};

constexpr Field trap_target_fields[] = {
    ipv4(XPON_MEMBER(SnmpTrapTarget, address)),
    number(XPON_MEMBER(SnmpTrapTarget, port), 1, 65535, 162),
    enumeration(XPON_MEMBER(SnmpTrapTarget, version), version_names, SnmpTrapTarget::Version::v2c),
    text(XPON_MEMBER(SnmpTrapTarget, name), Characters::name, 1),
    boolean(XPON_MEMBER(SnmpTrapTarget, inform), false),
};
constexpr Table trap_target = make_table<SnmpTrapTarget>("SnmpTrapTarget", trap_target_fields);

constexpr Field fields[] = {
    boolean(XPON_MEMBER(GSysSnmpCfg, enabled), false),
    number(XPON_MEMBER(GSysSnmpCfg, port), 1, 65535, 161),
    boolean(XPON_MEMBER(GSysSnmpCfg, v2c_enabled), false),
    boolean(XPON_MEMBER(GSysSnmpCfg, v3_enabled), true),
    optional_text(XPON_MEMBER(GSysSnmpCfg, engine_id), Characters::hex, 10),
    text(XPON_MEMBER(GSysSnmpCfg, sys_contact), Characters::text),
    text(XPON_MEMBER(GSysSnmpCfg, sys_location), Characters::text),
    list(XPON_MEMBER(GSysSnmpCfg, communities), XPON_MEMBER(GSysSnmpCfg, communities_count), community),
    list(XPON_MEMBER(GSysSnmpCfg, users), XPON_MEMBER(GSysSnmpCfg, users_count), user),
    list(XPON_MEMBER(GSysSnmpCfg, trap_targets), XPON_MEMBER(GSysSnmpCfg, trap_targets_count), trap_target),
    boolean(XPON_MEMBER(GSysSnmpCfg, trap_link), true),
    boolean(XPON_MEMBER(GSysSnmpCfg, trap_ont), true),
    boolean(XPON_MEMBER(GSysSnmpCfg, trap_environment), true),
    boolean(XPON_MEMBER(GSysSnmpCfg, trap_config), true),
};

/// An engine id of nothing but zeros or ones is not allowed [RFC 3411 5].
void check_engine_id(std::string_view id, Contradictions& contradictions) {
    const bool is_zeros = id.find_first_not_of('0') == std::string_view::npos;
    const bool is_ones = id.find_first_not_of("fF") == std::string_view::npos;
    if (!id.empty() && (is_zeros || is_ones)) {
        contradictions.add("engine_id", "the id is all zeros or all ones");
    }
}

template <class Element>
void check_names(std::string_view key, std::span<const Element> elements, Contradictions& contradictions) {
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (has_equal_before(elements, i, &Element::name)) {
            contradictions.add_in(key, i, "name", "the name is repeated");
        }
    }
}

void check_secrets(std::span<const SnmpUser> users, Contradictions& contradictions) {
    for (std::size_t i = 0; i < users.size(); ++i) {
        const auto& entry = users[i];
        if (entry.security_level != SnmpUser::SecurityLevel::no_auth_no_priv && entry.auth_secret[0] == '\0') {
            contradictions.add_in("users", i, "auth_secret", "the security level needs a secret");
        }
        if (entry.security_level == SnmpUser::SecurityLevel::auth_priv && entry.priv_secret[0] == '\0') {
            contradictions.add_in("users", i, "priv_secret", "the security level needs a secret");
        }
    }
}

void check_trap_targets(std::span<const SnmpTrapTarget> targets, std::span<const SnmpUser> users,
                        Contradictions& contradictions) {
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const auto& target = targets[i];
        if (target.address == 0) {
            contradictions.add_in("trap_targets", i, "address", "a target needs an address");
        }
        const auto is_named = [&](const SnmpUser& entry) { return std::string_view(entry.name) == target.name; };
        if (target.version == SnmpTrapTarget::Version::v3 && std::ranges::none_of(users, is_named)) {
            contradictions.add_in("trap_targets", i, "name", "a v3 target needs a user of the list");
        }
        if (target.version == SnmpTrapTarget::Version::v1 && target.inform != 0) {
            contradictions.add_in("trap_targets", i, "inform", "v1 has no informs");
        }
    }
}

void rules(const GSysSnmpCfg& config, Contradictions& contradictions) {
    const std::span communities(config.communities, config.communities_count);
    const std::span users(config.users, config.users_count);
    check_engine_id(config.engine_id, contradictions);
    check_names("communities", communities, contradictions);
    check_names("users", users, contradictions);
    check_secrets(users, contradictions);
    check_trap_targets({config.trap_targets, config.trap_targets_count}, users, contradictions);
}

constexpr Table table = make_table<GSysSnmpCfg>("GSysSnmpCfg", fields, record_rules<GSysSnmpCfg, rules>);

} // namespace

template <>
const Table& record_table<GSysSnmpCfg>() {
    return table;
}

} // namespace xpon::serializer
