#include "client/oltctl/commands/syntax.hpp"

#include "client/oltctl/commands/context.hpp"

#include <utility>

#include <CLI/CLI.hpp>

namespace xpon::oltctl {

const OptionSyntax& OptionSyntax::required() const {
    option_->required();
    return *this;
}

const OptionSyntax& OptionSyntax::type_name(const std::string& name) const {
    option_->type_name(name);
    return *this;
}

const OptionSyntax& OptionSyntax::show_default() const {
    option_->capture_default_str();
    return *this;
}

const OptionSyntax& OptionSyntax::excludes(const OptionSyntax& other) const {
    option_->excludes(other.option_);
    return *this;
}

template <class Number>
const OptionSyntax& OptionSyntax::within(Number least, Number most) const {
    option_->check(CLI::Range(least, most));
    return *this;
}
template const OptionSyntax& OptionSyntax::within(int, int) const;
template const OptionSyntax& OptionSyntax::within(unsigned, unsigned) const;
template const OptionSyntax& OptionSyntax::within(double, double) const;

const OptionSyntax& OptionSyntax::positive() const {
    option_->check(CLI::PositiveNumber);
    return *this;
}

const OptionSyntax& OptionSyntax::one_of(const std::vector<std::string>& names) const {
    option_->check(CLI::IsMember(names));
    return *this;
}

const OptionSyntax& OptionSyntax::existing_file() const {
    option_->check(CLI::ExistingFile);
    return *this;
}

CommandSyntax CommandSyntax::add_command(const std::string& name, const std::string& meaning) const {
    return CommandSyntax(*app_->add_subcommand(name, meaning));
}

template <class Value>
OptionSyntax CommandSyntax::add_option(const std::string& name, Value& value, const std::string& meaning) const {
    return OptionSyntax(*app_->add_option(name, value, meaning));
}
template OptionSyntax CommandSyntax::add_option(const std::string&, std::string&, const std::string&) const;
template OptionSyntax CommandSyntax::add_option(const std::string&, std::vector<std::string>&,
                                                const std::string&) const;
template OptionSyntax CommandSyntax::add_option(const std::string&, unsigned&, const std::string&) const;
template OptionSyntax CommandSyntax::add_option(const std::string&, double&, const std::string&) const;
template OptionSyntax CommandSyntax::add_option(const std::string&, std::optional<int>&, const std::string&) const;

OptionSyntax CommandSyntax::add_flag(const std::string& name, bool& value, const std::string& meaning) const {
    return OptionSyntax(*app_->add_flag(name, value, meaning));
}

void CommandSyntax::require_command() const {
    app_->require_subcommand(1);
}

void CommandSyntax::allow_command() const {
    app_->require_subcommand(0, 1);
}

const CommandSyntax& CommandSyntax::hide() const {
    app_->group("");
    return *this;
}

void CommandSyntax::does(Context& context, std::function<void()> action) const {
    // Those of the commands that follow are called before.
    app_->callback([&context, action = std::move(action)] {
        if (!context.action) {
            context.action = action;
        }
    });
}

} // namespace xpon::oltctl
