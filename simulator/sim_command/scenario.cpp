#include "simulator/sim_command/scenario.hpp"

#include "simulator/sim_command/command_line.hpp"
#include "xpon/core/json_tree.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <optional>
#include <ranges>
#include <span>
#include <sstream>
#include <string_view>
#include <utility>

#include <CLI/Error.hpp>
#include <fmt/format.h>

namespace xpon::simulator {
namespace {

using StepKind = ScenarioStep::Kind;
using Words = std::vector<std::string>;
using Comparison = Condition::Comparison;

constexpr std::array<std::pair<std::string_view, Comparison>, 4> comparisons{{{"is", Comparison::is},
                                                                              {"is-not", Comparison::is_not},
                                                                              {"at-least", Comparison::at_least},
                                                                              {"at-most", Comparison::at_most}}};

[[noreturn]] void fail(const std::string& text) {
    throw CLI::ParseError(text, CLI::ExitCodes::ValidationError);
}

double number_of(const std::string& text) {
    double number = 0;
    const auto* const end = text.data() + text.size();
    const auto [last, fault] = std::from_chars(text.data(), end, number);
    if (fault != std::errc{} || last != end || number < 0) {
        fail(fmt::format("'{}' is no number", text));
    }
    return number;
}

/// Takes the words of a condition from the front.
Condition take_condition(std::span<const std::string>& words) {
    const bool has_place = !words.empty() && (words.front() == "ont" || words.front() == "pon");
    const std::size_t where = has_place ? 2 : 1;
    constexpr std::size_t comparison_words = 3;
    if (words.size() < where + comparison_words || (!has_place && words.front() != "summary")) {
        fail("a condition is summary, ont PLACE or pon PORT, a FIELD, is, is-not, at-least or at-most, and a VALUE");
    }
    Words question{"state"};
    question.insert(question.end(), words.begin(), words.begin() + static_cast<std::ptrdiff_t>(where));
    const auto comparison =
        std::ranges::find(comparisons, words[where + 1], [](const auto& row) { return std::string(row.first); });
    if (comparison == comparisons.end()) {
        fail(fmt::format("'{}' is none of is, is-not, at-least and at-most", words[where + 1]));
    }
    Condition condition{.question = command_of(question),
                        .field = words[where],
                        .comparison = comparison->second,
                        .value = words[where + 2]};
    if (condition.comparison == Comparison::at_least || condition.comparison == Comparison::at_most) {
        number_of(condition.value);
    }
    words = words.subspan(where + comparison_words);
    return condition;
}

ScenarioStep step_of(const Words& words, const std::string& line, unsigned number) {
    ScenarioStep step{.kind = StepKind::command, .line = number, .text = line};
    auto rest = std::span(words).subspan(1);
    if (words.front() == "wait-until") {
        step.kind = StepKind::wait_until;
        step.condition = take_condition(rest);
        if (rest.size() != 2 || rest.front() != "within") {
            fail("wait-until ends with \"within SECONDS\"");
        }
        step.limit_s = number_of(rest.back());
    } else if (words.front() == "expect") {
        step.kind = StepKind::expect;
        step.condition = take_condition(rest);
        if (!rest.empty() && (rest.front() != "else" || rest.size() == 1)) {
            fail("expect ends with \"else MESSAGE\", or with its condition");
        }
        step.message = rest.empty() ? "" : fmt::format("{}", fmt::join(rest.subspan(1), " "));
    } else if (words.front() == "repeat") {
        constexpr double most = 1e6;
        step.kind = StepKind::repeat;
        const double count = rest.size() == 1 ? number_of(rest.front()) : -1;
        if (count < 1 || count > most) {
            fail("repeat takes a COUNT from 1 to 1000000");
        }
        step.count = static_cast<unsigned>(count);
    } else {
        const auto begin = line.find_first_not_of(" \t");
        step.command = command_of(words.front().starts_with("{") ? Words{line.substr(begin)} : words);
    }
    return step;
}

/// Up to the end of the file, or of the loop that began in the line `loop`.
std::vector<ScenarioStep> parse_steps(std::istream& lines, unsigned& number, unsigned loop) {
    std::vector<ScenarioStep> steps;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        std::istringstream stream(line);
        const Words words(std::istream_iterator<std::string>(stream), {});
        if (words.empty() || words.front().starts_with("#")) {
            continue;
        }
        if (words.size() == 1 && words.front() == "end" && loop != 0) {
            return steps;
        }
        try {
            steps.push_back(step_of(words, line, number));
        } catch (const CLI::ParseError& error) {
            throw CLI::ParseError(fmt::format("Line {}: {}", number, error.what()), CLI::ExitCodes::ValidationError);
        }
        if (steps.back().kind == StepKind::repeat) {
            steps.back().body = parse_steps(lines, number, number);
        }
    }
    if (loop != 0) {
        fail(fmt::format("Line {}: this loop has no end", loop));
    }
    return steps;
}

core::JsonTree ask(ControlClient& client, const std::string& command) {
    core::JsonTree answer(cJSON_Parse(client.ask(command).c_str()));
    const auto* const error = cJSON_GetObjectItemCaseSensitive(answer.get(), "error");
    if (cJSON_IsString(error) != 0) {
        throw std::runtime_error(error->valuestring);
    }
    return answer;
}

const cJSON* find(const cJSON* value, std::string_view path) {
    for (const auto part : std::views::split(path, '.')) {
        value = cJSON_GetObjectItemCaseSensitive(value, std::string(part.begin(), part.end()).c_str());
    }
    return value;
}

double number_in(const cJSON* answer, std::string_view path) {
    const auto* const value = find(answer, path);
    return cJSON_IsNumber(value) != 0 ? value->valuedouble : 0;
}

std::string text_in(const cJSON* answer, std::string_view path) {
    const auto* const value = find(answer, path);
    return value == nullptr             ? ""
           : cJSON_IsString(value) != 0 ? value->valuestring
                                        : std::string(core::print_line(value).get());
}

bool holds(const Condition& condition, const cJSON* answer) {
    switch (condition.comparison) {
    case Comparison::is:
        return text_in(answer, condition.field) == condition.value;
    case Comparison::is_not:
        return text_in(answer, condition.field) != condition.value;
    case Comparison::at_least:
        return number_in(answer, condition.field) >= number_of(condition.value);
    case Comparison::at_most:
        return number_in(answer, condition.field) <= number_of(condition.value);
    }
    return false;
}

[[noreturn]] void disappoint(const ScenarioStep& step, const std::string& message, const cJSON* answer) {
    const auto found = text_in(answer, step.condition.field);
    throw Disappointment(fmt::format("line {}: {}: {} is '{}'", step.line, message.empty() ? step.text : message,
                                     step.condition.field, found));
}

void wait_until(ControlClient& client, const ScenarioStep& step) {
    constexpr double looks = 50; // as many as a limit is worth, each of which takes some hundredths of a second
    std::optional<double> begin;
    for (;;) {
        const auto answer = ask(client, step.condition.question);
        if (holds(step.condition, answer.get())) {
            return;
        }
        const double now = number_in(answer.get(), "time_s");
        const double left = begin.value_or(now) + step.limit_s - now;
        begin = begin.value_or(now);
        if (left <= 0) {
            disappoint(step, fmt::format("not within {} s: {}", step.limit_s, step.text), answer.get());
        }
        if (number_in(answer.get(), "clock_rate") == 0) {
            ask(client, command_of({"step", fmt::format("{}", std::min(left, step.limit_s / looks))}));
        } else {
            client.pause(std::chrono::milliseconds(100));
        }
    }
}

} // namespace

std::vector<ScenarioStep> parse_scenario(std::istream& lines) {
    unsigned number = 0;
    return parse_steps(lines, number, 0);
}

void run_scenario(ControlClient& client, const std::vector<ScenarioStep>& steps,
                  const std::function<void(const std::string& answer)>& show) {
    for (const auto& step : steps) {
        switch (step.kind) {
        case StepKind::command:
            show(client.ask(step.command));
            break;
        case StepKind::wait_until:
            wait_until(client, step);
            break;
        case StepKind::expect:
            if (const auto answer = ask(client, step.condition.question); !holds(step.condition, answer.get())) {
                disappoint(step, step.message, answer.get());
            }
            break;
        case StepKind::repeat:
            for (unsigned round = 0; round < step.count; ++round) {
                run_scenario(client, step.body, show);
            }
            break;
        }
    }
}

} // namespace xpon::simulator
