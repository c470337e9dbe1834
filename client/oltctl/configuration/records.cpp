#include "client/oltctl/configuration/records.hpp"

#include "client/oltctl/failure.hpp"

#include <cctype>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

namespace xpon::oltctl {

std::vector<std::string> ConfigurationAccess::all_indices(const Element& element) {
    std::vector<std::string> lists;
    for (unsigned level = 0; level < element.depth(); ++level) {
        std::string last = element.last[level];
        if (std::isdigit(static_cast<unsigned char>(last.front())) == 0) {
            if (!constants_) {
                constants_ = service_.ask({.path = "monitoring.constants", .method = "get"}).data;
            }
            const auto* const count = cJSON_GetObjectItemCaseSensitive(constants_.get(), last.c_str());
            last = fmt::format("{:.0f}", cJSON_IsNumber(count) != 0 ? count->valuedouble : 1);
        }
        lists.push_back("1-" + last);
    }
    return lists;
}

client::Request ConfigurationAccess::request_for_all(const Element& element, const char* type) {
    return {.path = element.path, .method = "get", .indices = all_indices(element), .config_type = type};
}

ConfigurationAccess::Read ConfigurationAccess::read_all(const Element& element, const char* type) {
    return records_of(element, service_.text_of_answer_to(request_for_all(element, type)));
}

ConfigurationAccess::Read ConfigurationAccess::records_of(const Element& element, const std::string& text) {
    auto answer = client::parse_answer(text);
    if (!answer) {
        throw Failure(ExitStatus::no_connection, answer.error().to_string());
    }
    if (!answer.value().is_good()) {
        throw Failure(ExitStatus::refused, text_of_errors(answer.value(), fmt::format("get {}", element.path)));
    }
    Read read{.tree = std::move(answer.value().data), .records = {}};
    const auto lists = all_indices(element);
    if (lists.empty()) {
        read.records.emplace(Index{}, read.tree.get());
        return read;
    }
    const auto* record = read.tree ? read.tree->child : nullptr;
    for (const auto& index : indices_of(lists)) {
        if (record == nullptr) {
            throw Failure(ExitStatus::refused, fmt::format("{}: the service left records out", element.path));
        }
        read.records.emplace_hint(read.records.end(), index, record);
        record = record->next;
    }
    return read;
}

std::size_t ConfigurationAccess::write(const Element& element, const Records& records) {
    std::unordered_map<std::string, std::vector<Index>> equal; // by their text
    for (const auto& [index, record] : records) {
        equal[core::print_line(record).get()].push_back(index);
    }
    std::size_t requests = 0;
    for (const auto& [text, indices] : equal) {
        for (auto& lists : lists_of(indices, element.depth())) {
            client::Request request{
                .path = element.path, .method = "set", .indices = std::move(lists), .config_type = "candidate"};
            request.data.reset(cJSON_CreateRaw(text.c_str()));
            const auto answer = service_.answer_to(request);
            ++requests;
            if (!answer.is_good()) {
                throw Failure(ExitStatus::refused,
                              text_of_errors(answer, fmt::format("set {} {}", element.path, text_of(indices.front()))));
            }
        }
    }
    return requests;
}

bool is_equal(const cJSON* left, const cJSON* right) {
    return cJSON_Compare(left, right, 1) != 0;
}

} // namespace xpon::oltctl
