#include "client/oltctl/configuration/difference.hpp"

#include "client/oltctl/output/terminal.hpp"
#include "xpon/client/serial_number.hpp"

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

std::string print_value(const cJSON* value) {
    return value == nullptr ? "" : core::print_line(value).get();
}

bool is_branch(const cJSON* value) {
    // Rows of plain numbers, such as a serial, are looked at as a whole.
    return cJSON_IsObject(value) != 0 || (cJSON_IsArray(value) != 0 && cJSON_IsObject(value->child) != 0);
}

/// Where the two values of a field differ; either may be missing.
void compare(const cJSON* running, const cJSON* candidate, const FieldDifference& place,
             std::vector<FieldDifference>& found) {
    if (running != nullptr && candidate != nullptr && is_equal(running, candidate)) {
        return;
    }
    if (!is_branch(running) && !is_branch(candidate)) {
        auto& difference = found.emplace_back(place);
        difference.running = print_value(running);
        difference.candidate = print_value(candidate);
        return;
    }
    const auto below = [&](const std::string& step) {
        auto deeper = place;
        deeper.field += (deeper.field.empty() ? "" : ".") + step;
        return deeper;
    };
    if (cJSON_IsArray(running) != 0 || cJSON_IsArray(candidate) != 0) {
        const auto* left = running == nullptr ? nullptr : running->child;
        const auto* right = candidate == nullptr ? nullptr : candidate->child;
        for (unsigned position = 0; left != nullptr || right != nullptr; ++position) {
            compare(left, right, below(fmt::format("{}", position)), found);
            left = left == nullptr ? nullptr : left->next;
            right = right == nullptr ? nullptr : right->next;
        }
        return;
    }
    const auto* const either = candidate == nullptr ? running : candidate; // a record always has all of its keys
    for (const auto* member = either->child; member != nullptr; member = member->next) {
        compare(cJSON_GetObjectItemCaseSensitive(running, member->string),
                cJSON_GetObjectItemCaseSensitive(candidate, member->string), below(member->string), found);
    }
}

/// A value as people read it.
std::string shown(const FieldDifference& difference, const std::string& value) {
    if (difference.field == "serial") {
        const auto serial = client::serial_text(core::JsonTree(cJSON_Parse(value.c_str())).get());
        return serial.empty() ? "none" : serial;
    }
    return value.empty() ? "none" : value;
}

} // namespace

std::vector<DifferingRecords> differing_records(Service& service, ConfigurationAccess& access) {
    std::vector<DifferingRecords> all;
    for (const auto& element : elements()) {
        const auto running = service.text_of_answer_to(access.request_for_all(element, "running"));
        const auto candidate = service.text_of_answer_to(access.request_for_all(element, "candidate"));
        if (running == candidate) {
            continue; // most of the time, and much quicker than to take both apart
        }
        auto& found = all.emplace_back(DifferingRecords{.element = &element,
                                                        .running = access.records_of(element, running),
                                                        .candidate = access.records_of(element, candidate)});
        std::erase_if(found.candidate.records, [&](const auto& row) {
            const auto at = found.running.records.find(row.first);
            const bool is_same = is_equal(at->second, row.second);
            if (is_same) {
                found.running.records.erase(at);
            }
            return is_same;
        });
    }
    return all;
}

std::vector<FieldDifference> differences(const std::vector<DifferingRecords>& records) {
    std::vector<FieldDifference> found;
    for (const auto& [element, running, candidate] : records) {
        for (const auto& [index, record] : candidate.records) {
            const FieldDifference place{
                .element = element->path, .index = text_of(index), .field = "", .running = "", .candidate = ""};
            compare(running.records.at(index), record, place, found);
        }
    }
    return found;
}

std::string text_of(const std::vector<FieldDifference>& differences) {
    std::string text;
    const FieldDifference* last = nullptr;
    for (const auto& difference : differences) {
        if (last == nullptr || last->element != difference.element || last->index != difference.index) {
            text += coloured(fmt::format("{}{}{}", difference.element, difference.index.empty() ? "" : " ",
                                         difference.index),
                             Colour::bold) +
                    "\n";
        }
        last = &difference;
        text += fmt::format("  {}: {} -> {}\n", difference.field,
                            coloured(shown(difference, difference.running), Colour::red),
                            coloured(shown(difference, difference.candidate), Colour::green));
    }
    return text;
}

std::string json_of(const std::vector<FieldDifference>& differences) {
    const core::JsonTree array(cJSON_CreateArray());
    for (const auto& difference : differences) {
        cJSON* const object = cJSON_CreateObject(); // owned by the array
        cJSON_AddItemToArray(array.get(), object);
        cJSON_AddStringToObject(object, "element", difference.element.c_str());
        cJSON_AddStringToObject(object, "index", difference.index.c_str());
        cJSON_AddStringToObject(object, "field", difference.field.c_str());
        cJSON_AddRawToObject(object, "running", difference.running.empty() ? "null" : difference.running.c_str());
        cJSON_AddRawToObject(object, "candidate", difference.candidate.empty() ? "null" : difference.candidate.c_str());
    }
    return std::string(core::print_line(array.get()).get()) + "\n";
}

} // namespace xpon::oltctl
