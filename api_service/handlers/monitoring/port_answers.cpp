#include "api_service/handlers/monitoring/port_answers.hpp"

#include "api_service/handlers/record_fields.hpp"

namespace xpon::api_service {
namespace {

constexpr JsonField<Sfp_identification> sfp_fields[] = {
    {"vendor", member<&Sfp_identification::vendor>},
    {"part_number", member<&Sfp_identification::part_number>},
    {"revision", member<&Sfp_identification::revision>},
};

Result<std::string> text_of_condition(const Sfp_identification& sfp) {
    switch (sfp.condition) {
    case sfp_absent:
        return std::string("Absent");
    case sfp_present:
        return device_text(sfp.condition_text);
    case sfp_excluded_from_polling:
        return std::string("ExcludePolling");
    }
    return ErrorPayload(Error::InvalidInputArg, fmt::format("unknown value {}", static_cast<unsigned>(sfp.condition)));
}

constexpr JsonField<Sfp_identification> condition_fields[] = {
    {"sfp_condition", [](const Sfp_identification& sfp) { return create_field_value(text_of_condition(sfp)); }},
};

} // namespace

Result<bool> add_sfp_condition(cJSON* object, const Sfp_identification& sfp) {
    BOOST_OUTCOME_TRY(add_fields(object, sfp, condition_fields));
    return sfp.condition == sfp_present;
}

Result<cJSON*> add_sfp(cJSON* object, const Sfp_identification& sfp) {
    BOOST_OUTCOME_TRY(auto* added, add_subobject(object, "sfp"));
    BOOST_OUTCOME_TRY(add_fields(added, sfp, sfp_fields));
    return added;
}

} // namespace xpon::api_service
