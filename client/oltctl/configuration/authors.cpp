#include "client/oltctl/configuration/authors.hpp"

#include "client/oltctl/failure.hpp"
#include "client/oltctl/olt_folder.hpp"

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <regex>
#include <sstream>
#include <string_view>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

/// One line of the log, such as
/// "2026-11-22 07:29:23.209 NOTICE [API-SERV_CHANGES] 811 Session 1: set configuration.X [1 1-8]: done (uid 0)".
struct Entry {
    std::string time;
    std::string session;
    std::string method;
    std::string path;
    std::string rest; ///< indices in brackets, or what else there is to tell
};

std::optional<Entry> parse(const std::string& line) {
    static const std::regex form(
        R"(^(\S+ [0-9:]+)\S* .* Session (\S+): (set|delete|command|auth) (\S+?)( [^:]*)?: done( \(.*\))?$)");
    std::smatch part;
    if (!std::regex_match(line, part, form)) {
        return std::nullopt;
    }
    return Entry{.time = part[1], .session = part[2], .method = part[3], .path = part[4], .rest = part[5]};
}

/// Whether the candidate is what runs, or has nothing more of what was there, after this.
bool ends_editing(const Entry& entry) {
    return entry.method == "command" &&
           (entry.path == "command.commit" || entry.path == "command.rollback" || entry.path == "command.reboot");
}

bool concerns(const Entry& entry, const DifferingRecords& change) {
    if (entry.path != change.element->path) {
        // A deleted ONT takes its services with it.
        return entry.method == "delete" && std::string_view(change.element->path).starts_with(entry.path + ".");
    }
    std::vector<std::string> lists;
    std::istringstream words(entry.rest);
    for (std::string word; words >> word;) {
        std::erase_if(word, [](char letter) { return letter == '[' || letter == ']'; });
        lists.push_back(word);
    }
    if (lists.size() != change.element->depth()) {
        return true; // a line that is cut: it may
    }
    const auto indices = indices_of(lists);
    return std::ranges::any_of(indices, [&](const Index& index) { return change.candidate.records.contains(index); });
}

} // namespace

std::vector<OtherAuthor> other_authors(std::istream& log, const std::vector<DifferingRecords>& changes,
                                       const std::string& own) {
    std::map<std::string, std::string> users; // by session
    std::map<std::string, OtherAuthor> authors;
    for (std::string line; std::getline(log, line);) {
        const auto entry = parse(line);
        if (!entry) {
            continue;
        }
        if (entry->method == "auth") {
            const auto quote = entry->rest.find('"');
            if (quote != std::string::npos) { // a login, not a logout
                users[entry->session] = entry->rest.substr(quote + 1, entry->rest.rfind('"') - quote - 1);
            }
        } else if (ends_editing(*entry)) {
            authors.clear();
        } else if (entry->path == "command.default") {
            authors[entry->session] = {
                .session = entry->session, .user = "", .time = entry->time, .what = "the factory configuration"};
        } else if (entry->session != own &&
                   std::ranges::any_of(changes, [&](const auto& change) { return concerns(*entry, change); })) {
            authors[entry->session] = {
                .session = entry->session, .user = "", .time = entry->time, .what = entry->path + entry->rest};
        }
    }
    authors.erase(own);
    std::vector<OtherAuthor> found;
    for (auto& [session, author] : authors) {
        author.user = users[session];
        found.push_back(author);
    }
    return found;
}

std::string text_of_other_authors(const std::vector<DifferingRecords>& changes, const std::string& own) {
    std::ifstream log(file_of_service("/var/log/api-service-changes.log"));
    if (!log) {
        return "What is shown may hold what others have edited: the service's log, which would tell, cannot be read.\n";
    }
    std::string text;
    try {
        for (const auto& author : other_authors(log, changes, own)) {
            text += fmt::format("Also edited by session {}{}, {}: {}\n", author.session,
                                author.user.empty() ? "" : fmt::format(" ({})", author.user), author.time, author.what);
        }
    } catch (const Failure&) {
        return "What is shown may hold what others have edited: the service's log is not as expected.\n";
    }
    return text;
}

} // namespace xpon::oltctl
