#include "simulator/sim_command/command_line.hpp"

#include "xpon/core/json_tree.hpp"

#include <charconv>
#include <sstream>
#include <stdexcept>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

using Words = std::span<const std::string>;

[[noreturn]] void refuse(const std::string& text) {
    throw std::runtime_error(text);
}

double number_of(const std::string& word, std::string_view meaning) {
    double number = 0;
    const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (fault != std::errc{} || end != word.data() + word.size()) {
        refuse(fmt::format("{} must be a number, not '{}'", meaning, word));
    }
    return number;
}

/// Takes the first word off the front.
const std::string& take(Words& words, std::string_view meaning) {
    if (words.empty()) {
        refuse(fmt::format("{} is missing", meaning));
    }
    const auto& word = words.front();
    words = words.subspan(1);
    return word;
}

void end(Words words) {
    if (!words.empty()) {
        refuse(fmt::format("'{}' is too much", words.front()));
    }
}

bool names_option(const std::string& word) {
    return word == "value" || word == "for";
}

void add_target(cJSON* command, Words& words) {
    if (!words.empty() && !names_option(words.front())) {
        cJSON_AddStringToObject(command, "target", take(words, "target").c_str());
    }
}

void add_fault(cJSON* command, Words words) {
    cJSON_AddStringToObject(command, "fault", take(words, "the kind of fault").c_str());
    add_target(command, words);
    while (!words.empty()) {
        const auto& option = take(words, "option");
        if (!names_option(option)) {
            refuse(fmt::format("expected 'value' or 'for', not '{}'", option));
        }
        cJSON_AddNumberToObject(command, option == "for" ? "for_s" : "value", number_of(take(words, option), option));
    }
}

void add_clock(cJSON* command, Words words) {
    const auto& kind = take(words, "the clock");
    cJSON_AddStringToObject(command, "clock", kind.c_str());
    if (!words.empty()) {
        cJSON_AddNumberToObject(command, "rate", number_of(take(words, "rate"), "rate"));
    }
    end(words);
}

core::JsonTree parse(Words words) {
    core::JsonTree command(cJSON_CreateObject());
    const auto& verb = take(words, "the command");
    if (verb == "fault") {
        add_fault(command.get(), words);
    } else if (verb == "clear") {
        cJSON_AddStringToObject(command.get(), "clear", take(words, "the kind of fault").c_str());
        add_target(command.get(), words);
        end(words);
    } else if (verb == "step") {
        cJSON_AddNumberToObject(command.get(), "step_s", number_of(take(words, "seconds"), "seconds"));
        end(words);
    } else if (verb == "clock") {
        add_clock(command.get(), words);
    } else if (verb == "state") {
        cJSON_AddStringToObject(command.get(), "state", words.empty() ? "summary" : take(words, "state").c_str());
        end(words);
    } else if (verb == "snapshot" || verb == "load") {
        cJSON_AddStringToObject(command.get(), verb.c_str(), take(words, "the name of the snapshot").c_str());
        end(words);
    } else if (verb == "faults") {
        cJSON_AddTrueToObject(command.get(), "faults");
        end(words);
    } else if (verb == "at") {
        cJSON_AddNumberToObject(command.get(), "at_s", number_of(take(words, "seconds"), "seconds"));
        cJSON_AddItemToObject(command.get(), "command", parse(words).release());
    } else {
        refuse(fmt::format(
            "there is no command '{}'; try fault, clear, step, clock, state, snapshot, load, faults or at", verb));
    }
    return command;
}

} // namespace

std::string command_of(Words words) {
    if (words.size() == 1 && words.front().starts_with("{")) {
        return words.front();
    }
    const core::JsonText text(cJSON_PrintUnformatted(parse(words).get()));
    if (!text) {
        throw std::bad_alloc();
    }
    return text.get();
}

std::vector<std::string> commands_of_scenario(const std::string& text) {
    std::vector<std::string> commands;
    std::istringstream lines(text);
    std::string line;
    for (unsigned number = 1; std::getline(lines, line); ++number) {
        std::istringstream stream(line);
        std::vector<std::string> words;
        for (std::string word; stream >> word;) {
            words.push_back(word);
        }
        if (words.empty() || words.front().starts_with("#")) {
            continue;
        }
        try {
            commands.push_back(words.front().starts_with("{") ? line : command_of(words));
        } catch (const std::runtime_error& error) {
            refuse(fmt::format("line {}: {}", number, error.what()));
        }
    }
    return commands;
}

} // namespace xpon::simulator
