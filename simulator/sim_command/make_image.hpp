#pragma once

#include <span>
#include <string>

namespace xpon::simulator {

/// Makes a firmware image as the words, those behind "make-image", ask for. The exit status: 0; 1 when the file cannot
/// be written; 2 for a bad command line. Faults are told on standard error.
int make_image_file(std::span<const std::string> words);

} // namespace xpon::simulator
