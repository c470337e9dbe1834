#include "client/oltctl/output/terminal.hpp"

#include "client/oltctl/failure.hpp"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <limits>

#include <sys/ioctl.h>

#include <fmt/format.h>
#include <unistd.h>

namespace xpon::oltctl {
namespace {

const char* start_of(Colour colour) {
    switch (colour) {
    case Colour::red:
        return "\033[31m";
    case Colour::green:
        return "\033[32m";
    case Colour::yellow:
        return "\033[33m";
    case Colour::bold:
        return "\033[1m";
    case Colour::plain:
        break;
    }
    return "";
}

} // namespace

bool output_is_a_terminal() {
    return isatty(STDOUT_FILENO) == 1;
}

bool errors_are_a_terminal() {
    return isatty(STDERR_FILENO) == 1;
}

bool wants_colours() {
    const char* const refused = std::getenv("NO_COLOR");
    return output_is_a_terminal() && (refused == nullptr || *refused == '\0');
}

bool a_person_is_there() {
    return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

std::size_t output_width() {
    winsize size{};
    if (!output_is_a_terminal() || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
        return std::numeric_limits<std::size_t>::max();
    }
    return size.ws_col;
}

std::string coloured(const std::string& text, Colour colour) {
    static const bool wanted = wants_colours();
    return wanted && colour != Colour::plain ? start_of(colour) + text + "\033[0m" : text;
}

void print(const std::string& text) {
    std::cout << text;
    if (!std::cout.flush()) {
        std::_Exit(static_cast<int>(ExitStatus::done));
    }
}

void ask_to_go_on(const std::string& question) {
    if (!a_person_is_there()) {
        throw Failure(ExitStatus::usage, fmt::format("{} Nobody is there to be asked: say --yes.", question));
    }
    std::cerr << question << " [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "y" && answer != "yes") {
        throw Failure(ExitStatus::refused, "Nothing was done.");
    }
}

} // namespace xpon::oltctl
