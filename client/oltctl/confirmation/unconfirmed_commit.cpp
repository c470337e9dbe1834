#include "client/oltctl/confirmation/unconfirmed_commit.hpp"

#include "client/oltctl/output/table.hpp"
#include "client/oltctl/session/private_file.hpp"
#include "xpon/core/json_tree.hpp"

#include <system_error>
#include <utility>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

using Seconds = std::chrono::duration<double>;

std::string text_at(const cJSON* object, const char* key) {
    return cell_text(value_at(object, key));
}

} // namespace

UnconfirmedCommitFile::UnconfirmedCommitFile(std::uint16_t port)
    : path_(runtime_folder() / fmt::format("oltctl-{}-unconfirmed.json", port)), port_(port) {}

std::filesystem::path UnconfirmedCommitFile::lock_path() const {
    auto path = path_;
    return path.replace_extension("lock");
}

std::optional<UnconfirmedCommitFile::Content> UnconfirmedCommitFile::read() const {
    if (!std::filesystem::exists(path_)) {
        return std::nullopt;
    }
    const core::JsonTree tree(cJSON_Parse(read_private_file(path_).c_str()));
    Content content{.commit = std::nullopt, .outcome = text_at(tree.get(), "outcome")};
    const auto* const deadline = cJSON_GetObjectItemCaseSensitive(tree.get(), "deadline");
    if (cJSON_IsNumber(deadline) != 0) {
        const auto since_start =
            std::chrono::duration_cast<std::chrono::steady_clock::duration>(Seconds(cJSON_GetNumberValue(deadline)));
        content.commit = {.session = {.id = text_at(tree.get(), "session_id"),
                                      .user = text_at(tree.get(), "user"),
                                      .privilege = text_at(tree.get(), "privilege"),
                                      .port = port_},
                          .deadline = std::chrono::steady_clock::time_point(since_start),
                          .before = text_at(tree.get(), "before"),
                          .trouble = text_at(tree.get(), "trouble")};
    }
    return content;
}

void UnconfirmedCommitFile::write(const UnconfirmedCommit& commit) const {
    const core::JsonTree tree(cJSON_CreateObject());
    cJSON_AddNumberToObject(tree.get(), "deadline", Seconds(commit.deadline.time_since_epoch()).count());
    for (const auto& [key, text] : {std::pair{"session_id", &commit.session.id},
                                    {"user", &commit.session.user},
                                    {"privilege", &commit.session.privilege},
                                    {"trouble", &commit.trouble},
                                    {"before", &commit.before}}) {
        cJSON_AddStringToObject(tree.get(), key, text->c_str());
    }
    write_private_file(path_, core::print_line(tree.get()).get());
}

void UnconfirmedCommitFile::write_outcome(const std::string& outcome) const {
    const core::JsonTree tree(cJSON_CreateObject());
    cJSON_AddStringToObject(tree.get(), "outcome", outcome.c_str());
    write_private_file(path_, core::print_line(tree.get()).get());
}

void UnconfirmedCommitFile::remove() const {
    std::error_code ignored; // it is gone then, too
    std::filesystem::remove(path_, ignored);
}

} // namespace xpon::oltctl
