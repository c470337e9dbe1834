#pragma once

#include <cstddef>
#include <string>

namespace xpon::oltctl {

/// Whether questions can be asked and answered: standard input and standard error are terminals.
bool a_person_is_there();
/// Columns of the terminal; without one, as in a pipe, as many as one likes.
std::size_t output_width();

bool output_is_a_terminal();
bool errors_are_a_terminal(); ///< standard error
/// Whether it gets colours: it is a terminal, and NO_COLOR is not set.
bool wants_colours();
enum class Colour { plain, red, green, yellow, bold };
/// The text in the colour, where standard output is a terminal and NO_COLOR is not set.
std::string coloured(const std::string& text, Colour colour);

/// Writes to standard output. A reader that has gone away, as in `oltctl onts | head`, ends the program quietly.
void print(const std::string& text);

/// Asks for yes or no; Failure (refused) for anything but yes, Failure (usage) when nobody is there to be asked.
void ask_to_go_on(const std::string& question);

} // namespace xpon::oltctl
