#include "gateway/http/static_files.hpp"

#include "gateway/http/percent_encoding.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <string_view>

#include <sys/stat.h>
#include <sys/syscall.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <linux/openat2.h>
#include <unistd.h>

namespace xpon::gateway {
namespace {

constexpr std::string_view front_page = "index.html";
constexpr off_t most_bytes = 16L << 20U;

struct Type {
    std::string_view ending;
    std::string_view name;
};
constexpr std::array types{
    Type{".html", "text/html; charset=utf-8"},
    Type{".js", "text/javascript; charset=utf-8"},
    Type{".css", "text/css; charset=utf-8"},
    Type{".json", "application/json"},
    Type{".map", "application/json"},
    Type{".svg", "image/svg+xml"},
    Type{".png", "image/png"},
    Type{".ico", "image/x-icon"},
    Type{".woff2", "font/woff2"},
    Type{".txt", "text/plain; charset=utf-8"},
    Type{".webmanifest", "application/manifest+json"},
};

struct Encoding {
    std::string_view token;
    std::string_view ending;
};
constexpr std::array encodings{Encoding{"br", ".br"}, Encoding{"gzip", ".gz"}};

std::string_view type_of(std::string_view name) {
    const auto found = std::ranges::find_if(types, [&](const Type& type) { return name.ends_with(type.ending); });
    return found == types.end() ? "application/octet-stream" : found->name;
}

/// NAME-HASH.ENDING, as esbuild writes it, with eight letters and digits: another content has another name.
bool has_hash_in_name(std::string_view name) {
    const auto dash = name.rfind('-');
    if (dash == std::string_view::npos || name.size() < dash + 10 || name[dash + 9] != '.') {
        return false;
    }
    return std::ranges::all_of(name.substr(dash + 1, 8),
                               [](unsigned char c) { return std::isupper(c) != 0 || std::isdigit(c) != 0; });
}

struct File {
    core::UniqueFd descriptor;
    struct stat facts{};
};

std::optional<File> open_below(const core::UniqueFd& folder, const std::string& name) {
    open_how how{};
    how.flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
    File file{.descriptor =
                  core::UniqueFd(static_cast<int>(syscall(SYS_openat2, folder.get(), name.c_str(), &how, sizeof how)))};
    if (!file.descriptor || fstat(file.descriptor.get(), &file.facts) != 0 || !S_ISREG(file.facts.st_mode) ||
        file.facts.st_size > most_bytes) {
        return std::nullopt;
    }
    return file;
}

std::optional<std::string> content(const File& file) {
    std::string bytes(static_cast<std::size_t>(file.facts.st_size), '\0');
    for (std::size_t have = 0; have < bytes.size();) {
        const auto count = read(file.descriptor.get(), bytes.data() + have, bytes.size() - have);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return std::nullopt; // it is being written
        }
        have += static_cast<std::size_t>(count);
    }
    return bytes;
}

/// Whether a list such as "gzip;q=0.5, br" names the token, other than with weight zero.
bool is_listed(std::string_view list, std::string_view token) {
    while (!list.empty()) {
        const auto end = std::min(list.find(','), list.size());
        auto item = list.substr(0, end);
        item.remove_prefix(std::min(item.find_first_not_of(" \t"), item.size()));
        if (item.substr(0, item.find_first_of("; \t")) == token && !item.ends_with("q=0")) {
            return true;
        }
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return false;
}

HttpResponse not_found() {
    return {.status = 404,
            .content_type = "text/plain; charset=utf-8",
            .body = "There is no such page.\n",
            .headers = {{"Cache-Control", "no-store"}}};
}

} // namespace

HttpResponse StaticFiles::get(const HttpRequest& request) const {
    const auto decoded = percent_decoded(request.path());
    if (!decoded || !decoded->starts_with('/') || decoded->find('\0') != std::string::npos ||
        decoded->find("/.") != std::string::npos) {
        return not_found();
    }
    auto name = decoded->substr(1);
    if (name.find('.', name.rfind('/') + 1) == std::string::npos) {
        name = front_page;
    }
    const core::UniqueFd folder(open(folder_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    auto file = open_below(folder, name);
    if (!file) {
        return not_found();
    }
    HttpResponse response{.status = 200, .content_type = std::string(type_of(name))};
    response.headers = {{"Cache-Control", has_hash_in_name(name) ? "public, max-age=31536000, immutable" : "no-cache"},
                        {"Vary", "Accept-Encoding"}};
    std::string_view encoding;
    for (const auto& [token, ending] : encodings) {
        if (!encoding.empty() || !is_listed(request.header("accept-encoding"), token)) {
            continue;
        }
        if (auto compressed = open_below(folder, name + std::string(ending))) {
            file = std::move(compressed);
            encoding = token;
            response.headers.emplace_back("Content-Encoding", token);
        }
    }
    const auto& facts = file->facts;
    const auto tag = fmt::format("\"{:x}-{:x}-{:x}{}\"", facts.st_ino, facts.st_size,
                                 facts.st_mtim.tv_sec * 1'000'000'000 + facts.st_mtim.tv_nsec, encoding);
    response.headers.emplace_back("ETag", tag);
    if (request.header("if-none-match").find(tag) != std::string_view::npos) {
        response.status = 304;
        return response;
    }
    auto bytes = content(*file);
    if (!bytes) {
        return not_found();
    }
    response.body = *std::move(bytes);
    return response;
}

} // namespace xpon::gateway
