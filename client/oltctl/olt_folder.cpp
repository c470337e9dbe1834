#include "client/oltctl/olt_folder.hpp"

#include "client/oltctl/failure.hpp"

#include <cstdlib>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

std::filesystem::path root() {
    const char* const folder = std::getenv("OLT_ROOT");
    return folder == nullptr || *folder == '\0' ? "/" : std::filesystem::weakly_canonical(folder);
}

} // namespace

std::filesystem::path file_of_service(const std::filesystem::path& absolute) {
    return root() / absolute.relative_path();
}

std::filesystem::path name_for_service(const std::filesystem::path& file) {
    const auto below = std::filesystem::weakly_canonical(file).lexically_relative(root());
    if (below.empty() || *below.begin() == "..") {
        throw Failure(ExitStatus::usage,
                      fmt::format("The service reads files below OLT_ROOT alone. Copy '{}' to {} first.", file.string(),
                                  (root() / "firmware").string()));
    }
    return "/" / below;
}

} // namespace xpon::oltctl
