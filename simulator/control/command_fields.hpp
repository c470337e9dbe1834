#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <cjson/cJSON.h>

namespace xpon::simulator {

/// A command that cannot be carried out; the text tells its sender why.
class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The members of a command. Every getter throws CommandError for a member of another type or outside its limits.
class CommandFields {
public:
    /// `command` outlives this object. Throws for a member that is not in `known`, separated by blanks.
    CommandFields(const cJSON* command, std::string_view known);

    [[nodiscard]] const cJSON* find(const char* name) const;
    /// The text of a member, or its number as text; `otherwise` without it.
    [[nodiscard]] std::string text(const char* name, std::string_view otherwise = "") const;
    [[nodiscard]] std::optional<double> number(const char* name, double least, double most) const;

private:
    const cJSON* command_;
};

} // namespace xpon::simulator
