#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace xpon::test {

/// A folder of its own that OLT_ROOT names, with what stands in it, while the object lives.
class TemporaryOltRoot {
public:
    TemporaryOltRoot();
    ~TemporaryOltRoot();
    TemporaryOltRoot(const TemporaryOltRoot&) = delete;
    TemporaryOltRoot& operator=(const TemporaryOltRoot&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const;

    /// Writes a file below the folder, making the folders on its way.
    void write(std::string_view relative_path, std::string_view text) const;
    /// The text of a file below the folder; empty when there is none.
    [[nodiscard]] std::string read(std::string_view relative_path) const;

private:
    std::filesystem::path path_;
};

} // namespace xpon::test
