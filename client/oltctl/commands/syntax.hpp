#pragma once

#include <functional>
#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming): the library's name
class App;
class Option;
} // namespace CLI

namespace xpon::oltctl {

class Context;

// What commands need of CLI11, which takes seconds to compile and so does that in few sources. Both are handles: what
// they stand for lives as long as the command line.

/// An option, or a word that stands at its place.
class OptionSyntax {
public:
    explicit OptionSyntax(CLI::Option& option) : option_(&option) {}

    const OptionSyntax& required() const;
    /// What --help calls its value; "" for nothing.
    const OptionSyntax& type_name(const std::string& name) const;
    const OptionSyntax& show_default() const;
    const OptionSyntax& excludes(const OptionSyntax& other) const;
    template <class Number> ///< int, unsigned, double
    const OptionSyntax& within(Number least, Number most) const;
    const OptionSyntax& positive() const;
    const OptionSyntax& one_of(const std::vector<std::string>& names) const;
    const OptionSyntax& existing_file() const;

private:
    CLI::Option* option_;
};

/// A command, or the whole program that has commands.
class CommandSyntax {
public:
    explicit CommandSyntax(CLI::App& app) : app_(&app) {}

    CommandSyntax add_command(const std::string& name, const std::string& meaning) const;
    /// `name` begins with "-" for an option. `value` is set while the command line is read.
    template <class Value> ///< std::string, a vector of these, unsigned, double, std::optional<int>
    OptionSyntax add_option(const std::string& name, Value& value, const std::string& meaning = "") const;
    OptionSyntax add_flag(const std::string& name, bool& value, const std::string& meaning) const;
    /// One of its commands has to follow, or may.
    void require_command() const;
    void allow_command() const;
    /// Not among the commands of --help.
    const CommandSyntax& hide() const;
    /// What it does, unless a command that follows it does something.
    void does(Context& context, std::function<void()> action) const;

    [[nodiscard]] CLI::App& app() const {
        return *app_;
    }

private:
    CLI::App* app_;
};

} // namespace xpon::oltctl
