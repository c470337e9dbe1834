#pragma once

#include <string>

namespace CLI { // NOLINT(readability-identifier-naming): the library's name
class App;
} // namespace CLI

namespace xpon::oltctl {

/// The manual page of the program, in roff for man(7): all commands with what they take, as --help tells it.
std::string man_page(const CLI::App& app);

} // namespace xpon::oltctl
