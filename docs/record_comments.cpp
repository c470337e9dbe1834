#include "docs/record_comments.hpp"

#include <fstream>
#include <regex>
#include <stdexcept>

namespace xpon::docs {
namespace {

// The forms that the headers of the records have, one declaration per line.
const std::regex own_line(R"(\s*/// (.*))");
const std::regex record_line(R"(struct (\w+) \{)");
const std::regex enumeration_line(R"(\s*enum (?:class )?(\w+) .*;(?:\s*///< (.*))?)");
const std::regex member_line(R"(\s+([\w:]+) (\w+)(?:\[\d+\])?;(?:\s*///< (.*))?)");

} // namespace

RecordComments::RecordComments(const std::filesystem::path& folder) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        read(entry.path());
    }
    if (texts_.empty()) {
        throw std::runtime_error("No records are declared in " + folder.string());
    }
}

void RecordComments::read(const std::filesystem::path& header) {
    std::ifstream in(header);
    std::string record;
    std::string above; // what the lines before the present one say
    std::map<std::string, std::string> types;
    for (std::string line; std::getline(in, line);) {
        std::smatch found;
        if (std::regex_match(line, found, own_line)) {
            above += (above.empty() ? "" : " ") + found.str(1);
            continue;
        }
        if (std::regex_match(line, found, record_line)) {
            record = found[1];
            texts_[record] = above;
        } else if (std::regex_match(line, found, enumeration_line)) {
            types[found[1]] = found[2];
        } else if (std::regex_match(line, found, member_line)) {
            texts_[record + "." + found.str(2)] = found[3].matched ? found.str(3) : types[found[1]];
        }
        above.clear();
    }
}

std::string RecordComments::of(std::string_view record) const {
    const auto text = texts_.find(std::string(record));
    return text == texts_.end() ? "" : text->second;
}

std::string RecordComments::of(std::string_view record, std::string_view member) const {
    return of(std::string(record) + "." + std::string(member));
}

} // namespace xpon::docs
