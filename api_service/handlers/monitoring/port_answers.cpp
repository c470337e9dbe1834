#include "api_service/handlers/monitoring/port_answers.hpp"

namespace xpon::api_service {
namespace {

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

} // namespace

Result<void> write_condition(JsonWriter& writer, const Sfp_identification& sfp) {
    return write_value(writer, text_of_condition(sfp));
}

Result<bool> add_sfp_condition(JsonWriter& object, const Sfp_identification& sfp) {
    BOOST_OUTCOME_TRY(write_fields(object, sfp, condition_fields));
    return sfp.condition == sfp_present;
}

Result<void> fill_sfp(JsonWriter& object, const Sfp_identification& sfp) {
    return write_fields(object, sfp, sfp_fields);
}

} // namespace xpon::api_service
