#pragma once

namespace CLI { // NOLINT(readability-identifier-naming): the library chose it
class App;
}

namespace xpon::simulator {

/// Adds the verb make-image, which writes a firmware image and says so on standard output. Parsing it throws
/// std::system_error when the file cannot be written.
void add_make_image_verb(CLI::App& app);

} // namespace xpon::simulator
