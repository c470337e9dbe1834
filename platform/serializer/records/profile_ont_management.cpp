#include "serializer/field_builders.hpp"

#include <string_view>

namespace xpon::serializer {
namespace {

using cfgdb::ProfileOntManagementCfg;

constexpr const char* mode_names[] = {"omci", "tr069"};

constexpr Field fields[] = {
    name(XPON_MEMBER(ProfileOntManagementCfg, name)),
    enumeration(XPON_MEMBER(ProfileOntManagementCfg, mode), mode_names, ProfileOntManagementCfg::Mode::omci),
    boolean(XPON_MEMBER(ProfileOntManagementCfg, acs_from_dhcp), false),
    text(XPON_MEMBER(ProfileOntManagementCfg, acs_url), Characters::text),
    text(XPON_MEMBER(ProfileOntManagementCfg, acs_user), Characters::name),
    secret(XPON_MEMBER(ProfileOntManagementCfg, acs_secret)),
    number(XPON_MEMBER(ProfileOntManagementCfg, inform_interval_s), 60, 2592000, 86400),
    boolean(XPON_MEMBER(ProfileOntManagementCfg, web_lan), true),
    boolean(XPON_MEMBER(ProfileOntManagementCfg, web_wan), false),
    boolean(XPON_MEMBER(ProfileOntManagementCfg, ssh_wan), false),
    boolean(XPON_MEMBER(ProfileOntManagementCfg, ping_wan), true),
    secret(XPON_MEMBER(ProfileOntManagementCfg, admin_secret)),
    number(XPON_MEMBER(ProfileOntManagementCfg, mib_audit_s), 0, 3600, 300),
    boolean(XPON_MEMBER(ProfileOntManagementCfg, pm_collection), true),
};

void rules(const ProfileOntManagementCfg& profile, Contradictions& contradictions) {
    const std::string_view url(profile.acs_url);
    if (!url.empty() && !url.starts_with("http://") && !url.starts_with("https://")) {
        contradictions.add("acs_url", "the URL must start with http:// or https://");
    }
    if (profile.mode == ProfileOntManagementCfg::Mode::tr069 && url.empty() && profile.acs_from_dhcp == 0) {
        contradictions.add("acs_url", "tr069 needs acs_url or acs_from_dhcp");
    }
}

constexpr Table table = make_table<ProfileOntManagementCfg>("ProfileOntManagementCfg", fields,
                                                            record_rules<ProfileOntManagementCfg, rules>, "management");

} // namespace

template <>
const Table& record_table<ProfileOntManagementCfg>() {
    return table;
}

} // namespace xpon::serializer
