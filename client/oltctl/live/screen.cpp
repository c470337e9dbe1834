#define NCURSES_NOMACROS // functions, so that names of ours stay what they are
#include "client/oltctl/live/screen.hpp"

#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/table.hpp"
#include "client/oltctl/output/terminal.hpp"

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include <langinfo.h>
#include <ncurses.h>
#include <poll.h>
#include <unistd.h>

namespace xpon::oltctl {
namespace {

/// Numbers of colour pairs: that of the style, counted from 1.
struct Look {
    Style style;
    short colour;        ///< -1: the terminal's own
    unsigned attributes; ///< beside the colour, or in its place when there are none
};
constexpr Look looks[] = {
    {Style::title, -1, A_BOLD},           {Style::changed, -1, A_REVERSE},
    {Style::good, COLOR_GREEN, A_NORMAL}, {Style::warning, COLOR_YELLOW, A_NORMAL},
    {Style::bad, COLOR_RED, A_BOLD},      {Style::faint, -1, A_DIM},
};

void set_up_colours() {
    if (has_colors() && start_color() == OK && use_default_colors() == OK) {
        for (const auto& look : looks) {
            init_pair(static_cast<short>(look.style), look.colour, -1);
        }
    }
}

attr_t attributes_of(Style style, bool has_colours) {
    const auto* const look = std::ranges::find(looks, style, &Look::style);
    if (look == std::end(looks)) {
        return A_NORMAL;
    }
    return look->attributes | (has_colours ? static_cast<attr_t>(COLOR_PAIR(static_cast<int>(style))) : A_NORMAL);
}

} // namespace

/// ncurses' screen, and whether it has colours that the user wants.
struct Screen::Terminal {
    SCREEN* screen = nullptr;
    bool has_colours = false;
};

bool has_unicode() {
    return std::string_view(nl_langinfo(CODESET)) == "UTF-8";
}

Screen::Screen() : terminal_(std::make_unique<Terminal>()) {
    std::setlocale(LC_CTYPE, "");
    terminal_->screen =
        isatty(STDOUT_FILENO) == 1 && isatty(STDIN_FILENO) == 1 ? newterm(nullptr, stdout, stdin) : nullptr;
    if (terminal_->screen == nullptr) {
        throw Failure(ExitStatus::usage, "Standard input and output are no terminal that can be drawn on.");
    }
    terminal_->has_colours = wants_colours();
    if (terminal_->has_colours) {
        set_up_colours();
    }
    cbreak(); // Ctrl-C stays a signal: it ends also what waits for the service
    noecho();
    curs_set(0);
    keypad(stdscr, TRUE);
    set_escdelay(25);
}

Screen::~Screen() {
    endwin();
    delscreen(terminal_->screen);
}

std::size_t Screen::rows() const {
    return static_cast<std::size_t>(std::max(LINES, 1));
}

std::size_t Screen::columns() const {
    return static_cast<std::size_t>(std::max(COLS, 1));
}

void Screen::show(const std::vector<Line>& lines) {
    erase();
    for (std::size_t row = 0; row < std::min(lines.size(), rows()); ++row) {
        move(static_cast<int>(row), 0);
        std::size_t used = 0;
        for (const auto& span : lines[row]) {
            const auto text = cut(span.text, columns() - used);
            used += width_of(text);
            attrset(static_cast<int>(attributes_of(span.style, terminal_->has_colours)));
            addstr(text.c_str());
        }
    }
    attrset(A_NORMAL);
    refresh();
}

void Screen::leave() {
    endwin();
    clearok(stdscr, TRUE); // whatever stands there afterwards
}

Screen::Key Screen::wait(std::chrono::milliseconds limit) {
    // ncurses turns a resize into a key only while it reads; its handler interrupts poll.
    timeout(0);
    auto key = getch();
    if (key == ERR) {
        pollfd input{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
        const int ready = poll(&input, 1, static_cast<int>(std::max<std::int64_t>(limit.count(), 0)));
        if (ready > 0 && (input.revents & POLLIN) == 0) {
            return Key::quit;
        }
        key = getch();
        if (ready > 0 && key == ERR) {
            return Key::quit; // readable, but nothing to read: its end
        }
    }
    switch (key) {
    case 'q':
    case 'Q':
        return Key::quit;
    case KEY_UP:
    case 'k':
        return Key::up;
    case KEY_DOWN:
    case 'j':
        return Key::down;
    case KEY_PPAGE:
        return Key::page_up;
    case KEY_NPAGE:
    case ' ':
        return Key::page_down;
    case KEY_HOME:
        return Key::first;
    case KEY_END:
        return Key::last;
    case KEY_RESIZE:
        return Key::redraw;
    default:
        return Key::none;
    }
}

} // namespace xpon::oltctl
