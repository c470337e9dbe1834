#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace xpon::oltctl {

enum class Style { plain, title, changed, good, warning, bad, faint };

/// A stretch of a line in one style.
struct Span {
    std::string text;
    Style style = Style::plain;
};
using Line = std::vector<Span>;

/// The whole terminal, redrawn where it changes. The object's end, and Ctrl-C at any time, give the terminal back as it
/// was.
class Screen {
public:
    /// Failure (usage) when standard output is no terminal, or one that cannot be written at any place.
    Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen();

    [[nodiscard]] std::size_t rows() const;
    [[nodiscard]] std::size_t columns() const;

    /// Replaces all that is shown. What does not fit is cut.
    void show(const std::vector<Line>& lines);
    /// Gives the terminal back until the next `show`, to ask something there.
    void leave();

    enum class Key { none, quit, up, down, page_up, page_down, first, last, redraw };
    /// The next key, also a resize; none when the time passes. The end of the input counts as `quit`.
    Key wait(std::chrono::milliseconds limit);

private:
    struct Terminal;
    std::unique_ptr<Terminal> terminal_;
};

/// Whether the terminal's characters are those of UTF-8.
bool has_unicode();

} // namespace xpon::oltctl
