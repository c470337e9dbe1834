#include "client/oltctl/configuration/document.hpp"

#include "client/oltctl/failure.hpp"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

struct Row {
    Index first;
    std::string key;
    std::string record;
};

std::vector<Row> rows_of(const Element& element, const Records& records) {
    std::unordered_map<std::string, std::vector<Index>> equal;
    for (const auto& [index, record] : records) {
        equal[core::print_line(record).get()].push_back(index);
    }
    std::vector<Row> rows;
    for (const auto& [record, indices] : equal) {
        for (const auto& lists : lists_of(indices, element.depth())) {
            Index first{};
            for (std::size_t level = 0; level < lists.size(); ++level) {
                first[level] = numbers_of(lists[level]).front();
            }
            rows.push_back({first, fmt::format("{}", fmt::join(lists, "/")), record});
        }
    }
    std::ranges::sort(rows, {}, &Row::first); // no two rows share an index
    return rows;
}

/// What a document says of one element.
struct DocumentPart {
    const Element* element = nullptr;
    const Records* records = nullptr;
};

/// The parts as `next` hands them out, until it has no more.
std::string print_document(const std::function<bool(DocumentPart&)>& next) {
    std::string text = "{";
    for (DocumentPart part; next(part);) {
        text += fmt::format("{}\n\"{}\": ", text == "{" ? "" : ",", part.element->path);
        if (part.element->depth() == 0) {
            text += core::print_line(part.records->at(Index{})).get();
            continue;
        }
        const char* separator = "{";
        for (const auto& row : rows_of(*part.element, *part.records)) {
            text += fmt::format("{}\n  \"{}\": {}", separator, row.key, row.record);
            separator = ",";
        }
        text += "\n}";
    }
    return text + "\n}\n";
}

std::vector<std::string> lists_of_key(const Element& element, const std::string& key) {
    std::vector<std::string> lists;
    for (std::size_t begin = 0;;) {
        const auto slash = key.find('/', begin);
        lists.push_back(key.substr(begin, slash - begin));
        if (slash == std::string::npos) {
            break;
        }
        begin = slash + 1;
    }
    if (lists.size() != element.depth()) {
        throw Failure(ExitStatus::usage, fmt::format("{}: '{}' has {} indices, not {}.", element.path, key,
                                                     lists.size(), element.depth()));
    }
    return lists;
}

Records records_of(const Element& element, const cJSON* part) {
    if (cJSON_IsObject(part) == 0) {
        throw Failure(ExitStatus::usage, fmt::format("{}: an object is expected.", element.path));
    }
    Records records;
    if (element.depth() == 0) {
        records.emplace(Index{}, part);
        return records;
    }
    for (const auto* record = part->child; record != nullptr; record = record->next) {
        for (const auto& index : indices_of(lists_of_key(element, record->string))) {
            if (!records.emplace(index, record).second) {
                throw Failure(ExitStatus::usage, fmt::format("{}: {} is there twice.", element.path, text_of(index)));
            }
        }
    }
    return records;
}

/// What is left of `wanted` when everything that is so already goes.
Records differences(const Element& element, Records wanted, const Records& present) {
    std::erase_if(wanted, [&](const auto& row) {
        const auto found = present.find(row.first);
        if (found == present.end()) {
            throw Failure(ExitStatus::refused, fmt::format("{} {}: this OLT has no such record. Nothing was written.",
                                                           element.path, text_of(row.first)));
        }
        return is_equal(row.second, found->second);
    });
    if (!wanted.empty() && element.writer == nullptr) {
        throw Failure(ExitStatus::refused,
                      fmt::format("{} can be read only, and differs. Nothing was written.", element.path));
    }
    return wanted;
}

} // namespace

std::string export_document(ConfigurationAccess& access, const char* type) {
    const auto all = elements();
    auto element = all.begin();
    ConfigurationAccess::Read read;
    return print_document([&](DocumentPart& part) {
        if (element == all.end()) {
            return false;
        }
        read = access.read_all(*element, type);
        part = {&*element++, &read.records};
        return true;
    });
}

std::string document_of(const std::vector<DifferingRecords>& records,
                        ConfigurationAccess::Read DifferingRecords::* side) {
    auto element = records.begin();
    return print_document([&](DocumentPart& part) {
        if (element == records.end()) {
            return false;
        }
        part = {element->element, &((*element).*side).records};
        ++element;
        return true;
    });
}

Imported import_document(ConfigurationAccess& access, const std::string& text) {
    const char* stopped = nullptr;
    const core::JsonTree document(cJSON_ParseWithOpts(text.c_str(), &stopped, 1));
    if (cJSON_IsObject(document.get()) == 0) {
        const auto position = document ? 0 : std::min<std::ptrdiff_t>(stopped - text.c_str(), std::ssize(text));
        throw Failure(ExitStatus::usage, fmt::format("This is no JSON object: line {} cannot be read.",
                                                     1 + std::count(text.begin(), text.begin() + position, '\n')));
    }
    std::vector<std::pair<const Element*, Records>> wanted;
    for (const auto* part = document->child; part != nullptr; part = part->next) {
        const auto* const element = find_element(part->string);
        if (element == nullptr) {
            throw Failure(ExitStatus::usage, fmt::format("The configuration has no element '{}'.", part->string));
        }
        const auto present = access.read_all(*element, "candidate");
        wanted.emplace_back(element, differences(*element, records_of(*element, part), present.records));
    }
    Imported imported;
    for (const auto& [element, records] : wanted) {
        try {
            imported.requests += access.write(*element, records);
        } catch (const Failure& failure) {
            throw Failure(failure.status(),
                          fmt::format("{}\nOther records of the document are in the candidate already: "
                                      "correct it and import it again, or drop them with "
                                      "`oltctl rollback`.",
                                      failure.what()));
        }
        imported.changed += records.size();
    }
    return imported;
}

} // namespace xpon::oltctl
