#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming): the library's name
class App;
} // namespace CLI

namespace xpon::oltctl {

/// What the last word of a command line may become: commands, options and what they take, and from the catalogue paths
/// of routes, keys of elements ("key=") and values of enumerations ("key=value"). Whole words. Empty where anything may
/// stand, such as the name of a file. `line` is without the program's name.
std::vector<std::string> completions(const CLI::App& app, std::string_view line);

} // namespace xpon::oltctl
