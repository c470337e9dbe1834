#pragma once

#include <filesystem>
#include <string>

namespace xpon::oltctl {

/// A file of the user alone that an editor works on. It lies below XDG_STATE_HOME, which outlives the login, and stays
/// there unless `discard` is called: what somebody wrote is not lost when something goes wrong.
class EditedFile {
public:
    /// `name`: of the file, without what tells it from others. Failure (usage) when it cannot be made.
    EditedFile(const std::string& name, const char* ending, const std::string& text);
    /// A file that is there.
    explicit EditedFile(std::filesystem::path path);

    [[nodiscard]] const std::filesystem::path& path() const {
        return path_;
    }
    [[nodiscard]] std::string read() const;
    void write(const std::string& text) const;
    /// The editor that VISUAL or EDITOR names. Failure (refused) when it ends with a status other than 0.
    void edit() const;
    void discard() const;

private:
    std::filesystem::path path_;
};

/// XDG_STATE_HOME/oltctl or ~/.local/state/oltctl, made when it is missing. Failure (usage) when it cannot be.
std::filesystem::path state_folder();

} // namespace xpon::oltctl
