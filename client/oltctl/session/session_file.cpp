#include "client/oltctl/session/session_file.hpp"

#include "client/oltctl/failure.hpp"
#include "client/oltctl/session/private_file.hpp"
#include "xpon/core/json_tree.hpp"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>

#include <fmt/format.h>
#include <unistd.h>

namespace xpon::oltctl {
namespace {

std::filesystem::path path_of(std::uint16_t port) {
    return runtime_folder() / fmt::format("oltctl-{}.json", port);
}

std::string text_of(const cJSON* object, const char* key) {
    const char* const text = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(object, key));
    return text == nullptr ? "" : text;
}

/// Where nobody has set XDG_RUNTIME_DIR, as after su and in containers. The name is known to all, so somebody else may
/// have been there first.
std::filesystem::path own_temporary_folder() {
    auto folder = std::filesystem::temp_directory_path() / fmt::format("oltctl-{}", geteuid());
    struct stat status{};
    mkdir(folder.c_str(), S_IRWXU);
    if (lstat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != geteuid() ||
        (status.st_mode & 077U) != 0) {
        throw Failure(ExitStatus::no_session,
                      fmt::format("'{}' is not yours alone. Set XDG_RUNTIME_DIR to a folder that only you can read.",
                                  folder.string()));
    }
    return folder;
}

} // namespace

std::filesystem::path runtime_folder() {
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    return folder != nullptr && *folder == '/' ? folder : own_temporary_folder();
}

std::optional<KeptSession> read_kept_session(std::uint16_t port) {
    const auto path = path_of(port);
    if (!std::filesystem::exists(path)) {
        return std::nullopt;
    }
    const core::JsonTree tree(cJSON_Parse(read_private_file(path).c_str()));
    KeptSession session{.id = text_of(tree.get(), "session_id"),
                        .user = text_of(tree.get(), "user"),
                        .privilege = text_of(tree.get(), "privilege"),
                        .port = port};
    if (session.id.empty()) {
        return std::nullopt; // nothing that could be used
    }
    return session;
}

void keep_session(const KeptSession& session) {
    const core::JsonTree tree(cJSON_CreateObject());
    cJSON_AddStringToObject(tree.get(), "session_id", session.id.c_str());
    cJSON_AddStringToObject(tree.get(), "user", session.user.c_str());
    cJSON_AddStringToObject(tree.get(), "privilege", session.privilege.c_str());
    write_private_file(path_of(session.port), core::print_line(tree.get()).get());
}

void forget_session(std::uint16_t port) {
    std::error_code ignored; // there is none left then, either
    std::filesystem::remove(path_of(port), ignored);
}

} // namespace xpon::oltctl
