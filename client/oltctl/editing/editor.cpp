#include "client/oltctl/editing/editor.hpp"

#include "client/oltctl/child_process.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/session/private_file.hpp"
#include "client/oltctl/text_file.hpp"

#include <cstdlib>
#include <system_error>
#include <utility>

#include <fmt/format.h>
#include <unistd.h>

namespace xpon::oltctl {
namespace {

std::string from_environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace

std::filesystem::path state_folder() {
    const auto state = from_environment("XDG_STATE_HOME");
    const auto folder = (state.starts_with("/") ? std::filesystem::path(state)
                                                : std::filesystem::path(from_environment("HOME")) / ".local/state") /
                        "oltctl";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw Failure(ExitStatus::usage,
                      fmt::format("'{}' cannot be made: {}. Set XDG_STATE_HOME to a folder of your own.",
                                  folder.string(), error.message()));
    }
    return folder;
}

EditedFile::EditedFile(const std::string& name, const char* ending, const std::string& text) {
    for (unsigned number = 0; path_.empty() || std::filesystem::exists(path_); ++number) {
        path_ = state_folder() /
                fmt::format("{}-{}{}{}", name, getpid(), number == 0 ? "" : std::to_string(number), ending);
    }
    write(text);
}

EditedFile::EditedFile(std::filesystem::path path) : path_(std::move(path)) {}

std::string EditedFile::read() const {
    return read_text_file(path_);
}

void EditedFile::write(const std::string& text) const {
    write_private_file(path_, text);
}

void EditedFile::edit() const {
    auto editor = from_environment("VISUAL");
    editor = editor.empty() ? from_environment("EDITOR") : editor;
    editor = editor.empty() ? "editor" : editor;
    // The variable holds words of the shell, such as `code --wait`.
    const int status = run_child({"/bin/sh", "-c", editor + R"( "$1")", "sh", path_.string()});
    if (status != 0) {
        throw Failure(ExitStatus::refused, fmt::format("The editor `{}` ended with status {}.", editor, status));
    }
}

void EditedFile::discard() const {
    std::error_code ignored; // somebody else has taken it away
    std::filesystem::remove(path_, ignored);
}

} // namespace xpon::oltctl
