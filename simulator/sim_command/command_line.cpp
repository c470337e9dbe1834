#include "simulator/sim_command/command_line.hpp"

#include "xpon/core/json_tree.hpp"

#include <algorithm>
#include <memory>
#include <utility>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace xpon::simulator {
namespace {

enum class Kind { text, number, command };
enum class Need { required, optional };

/// What stands behind a verb and becomes a member of the command.
struct Word {
    const char* name;
    const char* member;
    Kind kind;
    Need need;
    const char* meaning;
};

struct Verb {
    const char* name;
    const char* meaning;
    std::vector<Word> words;
    const char* alone = nullptr; ///< the value of the member `name` when no word follows
    const char* kind = nullptr;  ///< what state asks for, such as "ont"
    std::vector<Verb> options{}; ///< may follow the words, with words of their own
    const char* usage = nullptr; ///< of the options
};

constexpr auto new_ont_usage = "model TEXT] [serial TEXT";

std::vector<Verb> new_ont_options() {
    return {{"model", "Of this model", {{"TEXT", "model", Kind::text, Need::required, "an equipment id of the plant"}}},
            {"serial",
             "With this serial number",
             {{"TEXT", "serial_number", Kind::text, Need::required, "such as SIMUA0030011"}}}};
}

const std::vector<Verb>& verbs() {
    static const std::vector<Verb> all{
        {.name = "fault",
         .meaning = "Inject a fault; without \"for\": until it is cleared",
         .words = {{"KIND", "fault", Kind::text, Need::required, "what breaks; olt_sim faults lists the kinds"},
                   {"TARGET", "target", Kind::text, Need::optional, "where, such as 1/1: ONT 1 of PON port 1"}},
         .options = {{"value",
                      "How bad it is",
                      {{"NUMBER", "value", Kind::number, Need::required, "in the kind's unit"}}},
                     {"for", "How long", {{"SECONDS", "for_s", Kind::number, Need::required, "of the plant's time"}}}},
         .usage = "value NUMBER] [for SECONDS"},
        {"clear",
         "Clear a fault; \"clear all\" clears every one",
         {{"KIND", "clear", Kind::text, Need::required, "the kind of fault, or all"},
          {"TARGET", "target", Kind::text, Need::optional, "where"}}},
        {.name = "faults", .meaning = "The kinds of faults and what they take", .words = {}, .alone = "true"},
        {"step", "Move the plant's clock ahead", {{"SECONDS", "step_s", Kind::number, Need::required, "how far"}}},
        {"clock",
         "How the plant's clock moves",
         {{"KIND", "clock", Kind::text, Need::required, "real, stepped or scaled"},
          {"FACTOR", "rate", Kind::number, Need::optional, "with scaled: how many times faster than real time"}}},
        {.name = "state",
         .meaning = "What is true of the plant; with --json as the control socket has it",
         .words = {},
         .alone = R"("summary")",
         .options = {{.name = "summary",
                      .meaning = "Time, faults, how many ONTs in each state",
                      .words = {},
                      .kind = "summary"},
                     {.name = "all", .meaning = "All of it, in JSON", .words = {}, .kind = "all"},
                     {.name = "ont",
                      .meaning = "An ONT, its line and subscribers",
                      .words = {{"ONT", "ont", Kind::text, Need::required, "such as 3/17: ONT 17 of PON port 3"}},
                      .kind = "ont"},
                     {.name = "pon",
                      .meaning = "A PON port and its ONTs",
                      .words = {{"PORT", "pon", Kind::number, Need::required, "1 to 16"}},
                      .kind = "pon"},
                     {.name = "subscribers", .meaning = "All services", .words = {}, .kind = "subscribers"}},
         .usage = "WHAT"},
        {"reboot", "The OLT restarts", {{"now", "reboot", Kind::text, Need::required, "to be sure"}}},
        {"firmware",
         "An image goes to the slot that does not run",
         {{"PATH", "firmware", Kind::text, Need::required, "of the image below OLT_ROOT, such as /firmware/new.img"}}},
        {"boot",
         "Choose the slot of the next boot",
         {{"SLOT", "boot", Kind::text, Need::required, "current or alternate"}}},
        {.name = "power",
         .meaning = "Switch ONTs on and off",
         .words = {},
         .options = {{"ont",
                      "One ONT",
                      {{"ONT", "ont", Kind::text, Need::required, "such as 3/17"},
                       {"on|off", "power", Kind::text, Need::required, ""}}},
                     {"pon",
                      "All ONTs of a PON port",
                      {{"PORT", "pon", Kind::number, Need::required, "1 to 16"},
                       {"on|off", "power", Kind::text, Need::required, ""}}},
                     {"all", "All ONTs", {{"on|off", "power", Kind::text, Need::required, ""}}}},
         .usage = "ont ONT|pon PORT|all on|off"},
        {.name = "add",
         .meaning = "A new ONT appears",
         .words = {{"ONT", "add", Kind::text, Need::required, "where none is, such as 4/33"}},
         .options = new_ont_options(),
         .usage = new_ont_usage},
        {.name = "swap",
         .meaning = "An ONT is replaced by another one",
         .words = {{"ONT", "swap", Kind::text, Need::required, "such as 3/17"}},
         .options = new_ont_options(),
         .usage = new_ont_usage},
        {"move",
         "An ONT is plugged into the fibre of another PON port, or back into its own",
         {{"ONT", "move", Kind::text, Need::required, "such as 3/17"},
          {"PORT", "pon", Kind::number, Need::required, "1 to 16"}}},
        {"lease",
         "The hosts of a service renew their leases, or drop them and ask for others",
         {{"SERVICE", "service", Kind::text, Need::required, "such as 3/17/1: service 1 of ONT 3/17"},
          {"renew|drop", "lease", Kind::text, Need::required, ""}}},
        {"session",
         "The network drops a PPPoE session; its client opens another one",
         {{"SERVICE", "service", Kind::text, Need::required, "such as 3/17/1"},
          {"drop", "session", Kind::text, Need::required, ""}}},
        {"group",
         "The viewers of a service join or leave a group and stay with what they have then; or are released",
         {{"SERVICE", "service", Kind::text, Need::required, "such as 3/17/2"},
          {"join|leave|release", "group", Kind::text, Need::required, ""},
          {"ADDRESS", "address", Kind::text, Need::optional, "to join or leave, such as 239.0.0.5"}}},
        {"traffic",
         "How a service is used",
         {{"SERVICE", "service", Kind::text, Need::required, "such as 3/17/1"},
          {"start|stop", "traffic", Kind::text, Need::required, "stop: as usual again"},
          {"PROFILE", "profile", Kind::text, Need::optional, "to start: idle, evening or speed_test"}}},
        {"snapshot",
         "Keep the plant, its time and faults as they are",
         {{"NAME", "snapshot", Kind::text, Need::required, "of the snapshot"}}},
        {"load",
         "Go back to a snapshot; the configuration stays that of now",
         {{"NAME", "load", Kind::text, Need::required, "of the snapshot"}}},
        {"at",
         "A command, once so much of the plant's time has passed",
         {{"SECONDS", "at_s", Kind::number, Need::required, "from now"},
          {"COMMAND", "command", Kind::command, Need::required, "any of these, with its words"}}},
    };
    return all;
}

CLI::Option* add_word(CLI::App* parser, const Word& word, cJSON* command) {
    const auto* const member = word.member;
    switch (word.kind) {
    case Kind::number:
        return parser->add_option_function<double>(
            word.name, [=](double number) { cJSON_AddNumberToObject(command, member, number); }, word.meaning);
    case Kind::command:
        return parser->add_option_function<std::vector<std::string>>(
            word.name, [=](const auto& words) { cJSON_AddRawToObject(command, member, command_of(words).c_str()); },
            word.meaning);
    case Kind::text:
        break;
    }
    return parser->add_option_function<std::string>(
        word.name, [=](const auto& text) { cJSON_AddStringToObject(command, member, text.c_str()); }, word.meaning);
}

CLI::App* add_verb(CLI::App& app, const Verb& verb, cJSON* command) {
    auto* const parser = app.add_subcommand(verb.name, verb.meaning);
    for (const auto& word : verb.words) {
        add_word(parser, word, command)->required(word.need == Need::required)->type_name("");
    }
    if (verb.kind != nullptr) {
        parser->callback([kind = verb.kind, command] { cJSON_AddStringToObject(command, "state", kind); });
    }
    if (verb.alone != nullptr) {
        parser->callback([&verb, command] {
            if (command->child == nullptr) {
                cJSON_AddRawToObject(command, verb.name, verb.alone);
            }
        });
    }
    for (const auto& option : verb.options) {
        add_verb(*parser, option, command)->group("Optional words");
    }
    if (verb.usage != nullptr) {
        const auto formatter = std::make_shared<CLI::Formatter>();
        formatter->label("SUBCOMMAND", verb.usage);
        parser->formatter(formatter);
    }
    return parser;
}

} // namespace

void add_simulator_verbs(CLI::App& app, Commands& commands) {
    const std::shared_ptr<cJSON> command(cJSON_CreateObject(), cJSON_Delete);
    for (const auto& verb : verbs()) {
        add_verb(app, verb, command.get());
    }
    app.require_subcommand(1); // after the verbs, whose optional words would inherit it
    app.final_callback([&commands, command] {
        if (command->child != nullptr) { // else it is another verb
            commands.emplace_back(core::print_line(command.get()).get());
        }
    });
}

void add_scenario_verb(CLI::App& app, std::string& file) {
    app.add_subcommand("run", "The steps of a scenario, one a line; docs/scenarios.md")
        ->add_option("FILE", file, "the file")
        ->required()
        ->check(CLI::ExistingFile);
}

void parse_words(CLI::App& app, std::vector<std::string> words, Commands& commands) {
    if (words.size() == 1 && words.front().starts_with("{")) {
        commands = std::move(words);
        return;
    }
    const auto is_meant = [&](const CLI::App* verb) { return verb->check_name(words.front()); };
    if (!words.empty() && app.get_subcommands(is_meant).empty() && app.get_option_no_throw(words.front()) == nullptr) {
        throw CLI::ParseError(fmt::format("There is no command '{}'", words.front()), CLI::ExitCodes::ExtrasError);
    }
    std::ranges::reverse(words); // CLI11 takes them from the back
    app.parse(std::move(words));
}

std::string command_of(const std::vector<std::string>& words) {
    CLI::App app;
    app.set_help_flag(); // a line of a file has no help to offer
    Commands commands;
    add_simulator_verbs(app, commands);
    parse_words(app, words, commands);
    return commands.front();
}

} // namespace xpon::simulator
