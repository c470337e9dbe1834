#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace xpon::test {

/// An OLT_ROOT of the test's own, gone with the object.
class TemporaryRoot {
public:
    TemporaryRoot() {
        std::string pattern = std::filesystem::temp_directory_path() / "cfgdb_test.XXXXXX";
        path_ = mkdtemp(pattern.data());
        setenv("OLT_ROOT", path_.c_str(), 1);
    }
    TemporaryRoot(const TemporaryRoot&) = delete;
    TemporaryRoot& operator=(const TemporaryRoot&) = delete;
    ~TemporaryRoot() {
        unsetenv("OLT_ROOT");
        std::filesystem::remove_all(path_);
    }

    [[nodiscard]] const std::filesystem::path& path() const {
        return path_;
    }

private:
    std::filesystem::path path_;
};

} // namespace xpon::test
