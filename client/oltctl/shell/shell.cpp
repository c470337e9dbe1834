#include "client/oltctl/shell/shell.hpp"

#include "client/oltctl/child_process.hpp"
#include "client/oltctl/editing/editor.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "client/oltctl/shell/words.hpp"

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>

#include <sys/stat.h>

#include <editline/readline.h>

namespace xpon::oltctl {
namespace {

constexpr auto prompt = "oltctl> ";
constexpr int kept_lines = 1000;

struct LineDeleter {
    void operator()(char* line) const {
        std::free(line); // NOLINT(cppcoreguidelines-no-malloc): editline allocates it
    }
};

/// editline's completion takes functions without an object.
Completer& completer() {
    static Completer completes;
    return completes;
}

/// The n-th of the words that the one before the cursor may become; editline frees it.
char* next_completion(const char* /*word*/, int number) {
    static std::vector<std::string> candidates;
    if (number == 0) {
        const std::string line(rl_line_buffer, static_cast<std::size_t>(rl_point));
        candidates = completer()(line);
    }
    const auto at = static_cast<std::size_t>(number);
    rl_completion_append_character = candidates.size() == 1 && candidates.front().ends_with('=') ? 0 : int{' '};
    return at < candidates.size() ? strdup(candidates[at].c_str()) : nullptr;
}

char** complete_word(const char* word, int /*begin*/, int /*end*/) {
    return rl_completion_matches(word, next_completion);
}

/// Lines from the terminal, with a history in a file.
class LineEditor {
public:
    LineEditor() : history_(state_folder() / "history") {
        std::setlocale(LC_CTYPE, "");
        rl_readline_name = "oltctl";
        rl_basic_word_break_characters = " \t\n";
        rl_completer_word_break_characters = const_cast<char*>(" \t\n");
        rl_attempted_completion_function = complete_word;
        rl_initialize();
        using_history();
        stifle_history(kept_lines);
        read_history(history_.c_str());
    }
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;
    ~LineEditor() {
        const auto others = umask(077);
        write_history(history_.c_str());
        umask(others);
    }

    static std::optional<std::string> next() {
        const std::unique_ptr<char, LineDeleter> line(readline(prompt));
        if (!line) {
            std::cout << "\n";
            return std::nullopt;
        }
        if (*line != '\0') {
            add_history(line.get());
        }
        return std::string(line.get());
    }

private:
    std::filesystem::path history_;
};

} // namespace

int run_shell(const std::vector<std::string>& options, Completer completes) {
    completer() = std::move(completes);
    const bool is_terminal = a_person_is_there();
    std::optional<LineEditor> editor;
    if (is_terminal) {
        std::signal(SIGINT, SIG_IGN); // it ends commands, not the shell
        editor.emplace();
    }
    const auto next = [&]() -> std::optional<std::string> {
        if (is_terminal) {
            return LineEditor::next();
        }
        std::string line;
        return std::getline(std::cin, line) ? std::optional(line) : std::nullopt;
    };
    int status = 0;
    while (const auto line = next()) {
        auto [words, is_open, begin] = split(*line);
        if (words.empty() || words.front().starts_with("#")) {
            continue;
        }
        if (words.front() == "exit" || words.front() == "quit") {
            break;
        }
        if (is_open) {
            std::cerr << "oltctl: a quote is not closed.\n";
            status = static_cast<int>(ExitStatus::usage);
            continue;
        }
        std::vector<std::string> command{"/proc/self/exe"};
        command.insert(command.end(), options.begin(), options.end());
        command.insert(command.end(), words.begin(), words.end());
        status = run_child(command);
    }
    return status;
}

} // namespace xpon::oltctl
