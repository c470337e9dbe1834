#include "api_service/handlers/monitoring/port_answers.hpp"

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
    {"sfp_condition",
     [](JsonWriter& to, const Sfp_identification& sfp) { return write_value(to, text_of_condition(sfp)); }},
};

} // namespace

Result<bool> add_sfp_condition(JsonWriter& object, const Sfp_identification& sfp) {
    BOOST_OUTCOME_TRY(write_fields(object, sfp, condition_fields));
    return sfp.condition == sfp_present;
}

Result<void> fill_sfp(JsonWriter& object, const Sfp_identification& sfp) {
    return write_fields(object, sfp, sfp_fields);
}

} // namespace xpon::api_service
