#include "client/oltctl/shell/completion.hpp"

#include "client/oltctl/catalogue/catalogue.hpp"
#include "client/oltctl/configuration/assignment.hpp"
#include "client/oltctl/shell/words.hpp"

#include <algorithm>
#include <sstream>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

/// Which routes a command takes as its PATH.
struct PathMethod {
    std::string_view command;
    std::string_view method;
};
constexpr PathMethod path_methods[] = {
    {"get", "get"}, {"watch", "get"}, {"set", "set"}, {"edit", "set"}, {"delete", "delete"}};

using Candidates = std::vector<std::string>;

void keep_those_that_begin(Candidates& candidates, const std::string& beginning) {
    std::erase_if(candidates, [&](const auto& candidate) { return !candidate.starts_with(beginning); });
    std::ranges::sort(candidates);
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
}

/// The words that an option takes, from what --help tells of its values: "TEXT:{rssi,state}".
Candidates choices_of(const CLI::Option& option) {
    const auto values = option.get_type_name();
    const auto begin = values.find('{');
    const auto end = values.find('}');
    Candidates choices;
    if (begin != std::string::npos && end != std::string::npos) {
        std::istringstream list(values.substr(begin + 1, end - begin - 1));
        for (std::string choice; std::getline(list, choice, ',');) {
            choices.push_back(choice);
        }
    }
    return choices;
}

std::vector<const CLI::App*> commands_of(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App*) { return true; });
}

void add_option_names(const CLI::App& app, Candidates& candidates) {
    for (const auto* option : app.get_options()) {
        for (const auto& name : option->get_lnames()) {
            candidates.push_back("--" + name);
        }
    }
}

/// "key=" of the fields, or "key=value" of the one that has been named.
Candidates assignments(std::string_view element, const std::string& word) {
    Candidates candidates;
    const auto key = word.substr(0, word.find('='));
    if (is_assignment(word)) {
        const auto* const field = find_field(element, key);
        std::istringstream names(field == nullptr ? "" : field->form == Form::boolean ? "true false" : field->names);
        for (std::string name; names >> name;) {
            candidates.push_back(fmt::format("{}={}", key, name));
        }
        return candidates;
    }
    for (const auto& field : catalogue_fields()) {
        if (field.element == element && field.form != Form::object && field.form != Form::list) {
            auto name = std::string(field.key);
            for (auto at = name.find("[]"); at != std::string::npos; at = name.find("[]")) {
                name.replace(at, 2, ".0"); // the first; others are counted on from there
            }
            candidates.push_back(name + "=");
        }
    }
    return candidates;
}

/// Where the words lead to.
struct Place {
    const CLI::App* app;
    std::vector<std::string> positionals; ///< of the command
    const CLI::Option* waiting = nullptr; ///< an option whose value comes next
};

Place place_behind(const CLI::App& app, const Candidates& words) {
    Place place{.app = &app, .positionals = {}};
    for (const auto& word : words) {
        if (place.waiting != nullptr) {
            place.waiting = nullptr;
        } else if (word.starts_with("-")) {
            const auto* option = place.app->get_option_no_throw(word);
            option = option == nullptr ? app.get_option_no_throw(word) : option;
            place.waiting = option != nullptr && option->get_items_expected_max() > 0 ? option : nullptr;
        } else {
            const auto commands = commands_of(*place.app);
            const auto command = std::ranges::find(commands, word, [](const auto* found) { return found->get_name(); });
            if (command == commands.end()) {
                place.positionals.push_back(word);
            } else {
                place.app = *command;
            }
        }
    }
    return place;
}

} // namespace

std::vector<std::string> completions(const CLI::App& app, std::string_view line) {
    auto split_line = split(line);
    auto& words = split_line.words;
    if (split_line.begin == line.size()) {
        words.emplace_back();
    }
    const auto word = words.back();
    words.pop_back();
    const auto place = place_behind(app, words);
    Candidates candidates;
    if (place.waiting != nullptr) {
        candidates = choices_of(*place.waiting);
    } else if (word.starts_with("-")) {
        add_option_names(*place.app, candidates);
        add_option_names(app, candidates);
    } else {
        const auto* const path = std::ranges::find(path_methods, place.app->get_name(), &PathMethod::command);
        const bool has_path = path != std::end(path_methods);
        if (has_path && place.positionals.empty()) {
            for (const auto& route : catalogue_routes()) {
                if (route.method == path->method) {
                    candidates.emplace_back(route.path);
                }
            }
        } else if (place.app->get_name() == "set") {
            candidates = assignments(place.positionals.front(), word);
        } else if (place.positionals.empty()) {
            for (const auto* command : commands_of(*place.app)) {
                if (!command->get_group().empty()) {
                    candidates.push_back(command->get_name());
                }
            }
            for (const auto* option : place.app->get_options()) {
                if (option->get_positional() && candidates.empty()) {
                    candidates = choices_of(*option);
                }
            }
        }
    }
    keep_those_that_begin(candidates, word);
    return candidates;
}

} // namespace xpon::oltctl
