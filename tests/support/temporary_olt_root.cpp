#include "tests/support/temporary_olt_root.hpp"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace xpon::test {

TemporaryOltRoot::TemporaryOltRoot() {
    auto name = (std::filesystem::temp_directory_path() / "olt.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr || setenv("OLT_ROOT", name.c_str(), 1) != 0) {
        throw std::runtime_error("no temporary folder " + name);
    }
    path_ = name;
}

TemporaryOltRoot::~TemporaryOltRoot() {
    unsetenv("OLT_ROOT");
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

const std::filesystem::path& TemporaryOltRoot::path() const {
    return path_;
}

void TemporaryOltRoot::write(std::string_view relative_path, std::string_view text) const {
    const auto file = path_ / relative_path;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << text;
}

std::string TemporaryOltRoot::read(std::string_view relative_path) const {
    std::ifstream file(path_ / relative_path);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace xpon::test
