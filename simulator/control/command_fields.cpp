#include "simulator/control/command_fields.hpp"

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

bool is_known(std::string_view name, std::string_view known) {
    while (!known.empty()) {
        const auto end = known.find(' ');
        if (known.substr(0, end) == name) {
            return true;
        }
        known.remove_prefix(end == std::string_view::npos ? known.size() : end + 1);
    }
    return false;
}

} // namespace

CommandFields::CommandFields(const cJSON* command, std::string_view known) : command_(command) {
    for (const auto* member = command->child; member != nullptr; member = member->next) {
        if (!is_known(member->string, known)) {
            throw CommandError(fmt::format("this command takes {}, not '{}'", known, member->string));
        }
    }
}

const cJSON* CommandFields::find(const char* name) const {
    return cJSON_GetObjectItemCaseSensitive(command_, name);
}

std::string CommandFields::text(const char* name, std::string_view otherwise) const {
    const auto* const member = find(name);
    if (member == nullptr) {
        return std::string(otherwise);
    }
    if (cJSON_IsNumber(member) != 0) {
        return fmt::format("{}", member->valuedouble);
    }
    if (cJSON_IsString(member) == 0) {
        throw CommandError(fmt::format("{} must be a text", name));
    }
    return member->valuestring;
}

std::optional<double> CommandFields::number(const char* name, double least, double most) const {
    const auto* const member = find(name);
    if (member == nullptr) {
        return std::nullopt;
    }
    // Written so that a number that is none (NaN) is refused as well.
    if (cJSON_IsNumber(member) == 0 || !(member->valuedouble >= least && member->valuedouble <= most)) {
        throw CommandError(fmt::format("{} must be a number from {} to {}", name, least, most));
    }
    return member->valuedouble;
}

} // namespace xpon::simulator
