#include "serializer/field_builders.hpp"
#include "xpon/peer_side/gpon_rates.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::ProfileOntDba;

constexpr const char* tcont_type_names[] = {"type1", "type2", "type3", "type4", "type5"};
constexpr const char* additional_names[] = {"none", "non_assured", "best_effort"};

constexpr std::int64_t frame_byte_kbps = 64; // one byte per frame of 125 us

constexpr Field fields[] = {
    name(XPON_MEMBER(ProfileOntDba, name)),
    enumeration(XPON_MEMBER(ProfileOntDba, tcont_type), tcont_type_names, ProfileOntDba::TcontType::type4),
    number(XPON_MEMBER(ProfileOntDba, fixed_kbps), 0, gpon_upstream_kbps, 0, frame_byte_kbps),
    number(XPON_MEMBER(ProfileOntDba, assured_kbps), 0, gpon_upstream_kbps, 0, frame_byte_kbps),
    number(XPON_MEMBER(ProfileOntDba, maximum_kbps), 64, gpon_upstream_kbps, gpon_upstream_kbps, frame_byte_kbps),
    enumeration(XPON_MEMBER(ProfileOntDba, additional), additional_names, ProfileOntDba::Additional::best_effort),
    number(XPON_MEMBER(ProfileOntDba, priority), 1, 8, 4),
    number(XPON_MEMBER(ProfileOntDba, weight), 1, 255, 1),
    boolean(XPON_MEMBER(ProfileOntDba, shared), true),
};

/// What a type of T-CONT demands of each parameter.
struct TypeRule {
    enum Rate : std::uint8_t { zero, positive, any };
    enum Maximum : std::uint8_t { equal_to_guaranteed, above_guaranteed, free };

    Rate fixed;
    Rate assured;
    Maximum maximum;
    bool allows_none;
    bool allows_non_assured;
    bool allows_best_effort;
};

constexpr TypeRule type_rules[] = {
    {TypeRule::positive, TypeRule::zero, TypeRule::equal_to_guaranteed, true, false, false},
    {TypeRule::zero, TypeRule::positive, TypeRule::equal_to_guaranteed, true, false, false},
    {TypeRule::zero, TypeRule::positive, TypeRule::above_guaranteed, false, true, false},
    {TypeRule::zero, TypeRule::zero, TypeRule::free, false, false, true},
    {TypeRule::positive, TypeRule::any, TypeRule::free, true, true, true},
};

void check_rate(const char* key, std::uint32_t rate, TypeRule::Rate rule, Contradictions& contradictions) {
    if (rule == TypeRule::zero && rate != 0) {
        contradictions.add(key, "the type has no such bandwidth");
    } else if (rule == TypeRule::positive && rate == 0) {
        contradictions.add(key, "the type needs such a bandwidth");
    }
}

void check_maximum(const ProfileOntDba& profile, TypeRule::Maximum rule, Contradictions& contradictions) {
    const auto guaranteed = profile.fixed_kbps + profile.assured_kbps;
    if (profile.maximum_kbps < guaranteed) {
        contradictions.add("maximum_kbps", "the maximum is less than what is guaranteed");
    } else if (rule == TypeRule::equal_to_guaranteed && profile.maximum_kbps != guaranteed) {
        contradictions.add("maximum_kbps", "the maximum of the type is what is guaranteed");
    } else if (rule == TypeRule::above_guaranteed && profile.maximum_kbps == guaranteed) {
        contradictions.add("maximum_kbps", "the maximum of the type is more than what is guaranteed");
    }
}

void check_additional(const ProfileOntDba& profile, const TypeRule& rule, Contradictions& contradictions) {
    const bool is_allowed = profile.additional == ProfileOntDba::Additional::none          ? rule.allows_none
                            : profile.additional == ProfileOntDba::Additional::non_assured ? rule.allows_non_assured
                                                                                           : rule.allows_best_effort;
    if (!is_allowed) {
        contradictions.add("additional", "the type has no such share of the spare bandwidth");
    } else if (profile.additional == ProfileOntDba::Additional::none &&
               profile.maximum_kbps > profile.fixed_kbps + profile.assured_kbps) {
        contradictions.add("additional", "without a share the maximum is what is guaranteed");
    }
}

void rules(const ProfileOntDba& profile, Contradictions& contradictions) {
    const auto& rule = type_rules[static_cast<std::size_t>(profile.tcont_type)];
    check_rate("fixed_kbps", profile.fixed_kbps, rule.fixed, contradictions);
    check_rate("assured_kbps", profile.assured_kbps, rule.assured, contradictions);
    check_maximum(profile, rule.maximum, contradictions);
    check_additional(profile, rule, contradictions);
}

constexpr Table table = make_table<ProfileOntDba>("ProfileOntDba", fields, record_rules<ProfileOntDba, rules>, "dba");

} // namespace

template <>
const Table& record_table<ProfileOntDba>() {
    return table;
}

} // namespace xpon::serializer
