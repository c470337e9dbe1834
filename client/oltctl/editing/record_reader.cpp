#include "client/oltctl/catalogue/catalogue.hpp"
#include "client/oltctl/editing/record_text.hpp"
#include "xpon/client/serial_number.hpp"

#include <algorithm>
#include <sstream>
#include <utility>

#include <fmt/format.h>
#include <yaml-cpp/yaml.h> // IWYU pragma: keep

namespace xpon::oltctl {
namespace {

constexpr std::string_view remark_mark = "#!";

std::size_t line_of(const YAML::Node& node) {
    return static_cast<std::size_t>(std::max(node.Mark().line, 0));
}

core::JsonTree plain_value(const YAML::Node& node, const CatalogueField* field) {
    const auto& text = node.Scalar();
    const auto as_text = [&] { return core::JsonTree(cJSON_CreateString(text.c_str())); };
    if (field != nullptr && field->form == Form::text) {
        return as_text();
    }
    if (field != nullptr && field->form == Form::serial) {
        auto serial = text.empty() ? core::JsonTree(cJSON_Parse("[0,0,0,0,0,0,0,0,0,0]")) : client::parse_serial(text);
        return serial ? std::move(serial) : as_text();
    }
    if (field != nullptr && field->form == Form::boolean) {
        bool value = false;
        return YAML::convert<bool>::decode(node, value) ? core::JsonTree(cJSON_CreateBool(value ? 1 : 0)) : as_text();
    }
    const bool is_quoted = node.Tag() == "!";
    core::JsonTree value(is_quoted ? nullptr : cJSON_ParseWithOpts(text.c_str(), nullptr, 1));
    return value ? std::move(value) : as_text();
}

core::JsonTree value_of(const YAML::Node& node, std::string_view element, const std::string& key) {
    if (node.IsMap()) {
        core::JsonTree object(cJSON_CreateObject());
        for (const auto& member : node) {
            const auto name = member.first.Scalar();
            auto value = value_of(member.second, element, key.empty() ? name : fmt::format("{}.{}", key, name));
            cJSON_AddItemToObject(object.get(), name.c_str(), value.release());
        }
        return object;
    }
    if (node.IsSequence()) {
        core::JsonTree array(cJSON_CreateArray());
        for (std::size_t position = 0; position < node.size(); ++position) {
            auto value = value_of(node[position], element, fmt::format("{}.{}", key, position));
            cJSON_AddItemToArray(array.get(), value.release());
        }
        return array;
    }
    return node.IsScalar() ? plain_value(node, find_field(element, key)) : core::JsonTree(cJSON_CreateNull());
}

/// The line of the field, or of the last step of its path that is there.
std::size_t line_of(const YAML::Node& record, std::string_view path) {
    auto node = record;
    auto line = line_of(record);
    while (!path.empty()) {
        const auto dot = std::min(path.find('.'), path.size());
        const std::string step(path.substr(0, dot));
        path.remove_prefix(std::min(path.size(), dot + 1));
        bool is_found = false;
        std::size_t position = 0;
        for (const auto& member : YAML::Node(node)) {
            const auto& child = node.IsMap() ? member.second : member;
            if (node.IsMap() ? member.first.Scalar() == step : fmt::format("{}", position) == step) {
                line = line_of(node.IsMap() ? member.first : member);
                node.reset(child);
                is_found = true;
                break;
            }
            ++position;
        }
        if (!is_found) {
            break;
        }
    }
    return line;
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool is_remark(const std::string& line) {
    const auto begin = line.find_first_not_of(' ');
    return begin != std::string::npos && std::string_view(line).substr(begin).starts_with(remark_mark);
}

std::string insert(const std::string& text, const std::multimap<std::size_t, std::string>& remarks) {
    const auto lines = lines_of(text);
    std::string marked;
    const auto add_remarks = [&](std::size_t number, std::size_t indent) {
        const auto [begin, end] = remarks.equal_range(number);
        for (auto remark = begin; remark != end; ++remark) {
            marked += fmt::format("{:{}}{} {}\n", "", indent, remark_mark, remark->second);
        }
    };
    for (std::size_t number = 0; number < lines.size(); ++number) {
        const auto indent = std::min(lines[number].find_first_not_of(' '), lines[number].size());
        add_remarks(number, indent);
        marked += lines[number] + "\n";
    }
    for (auto behind = remarks.lower_bound(lines.size()); behind != remarks.end(); ++behind) {
        marked += fmt::format("{} {}\n", remark_mark, behind->second);
    }
    return marked;
}

} // namespace

RecordTrees records_of(std::string_view element, const std::string& text, const RecordTrees& before) {
    YAML::Node document;
    try {
        document = YAML::Load(text);
    } catch (const YAML::Exception& exception) {
        throw TextFault{static_cast<std::size_t>(std::max(exception.mark.line, 0)), exception.msg};
    }
    if (!document.IsMap()) {
        throw TextFault{0, "Keys and values are expected here."};
    }
    RecordTrees records;
    if (before.begin()->first.empty()) {
        records.emplace("", value_of(document, element, ""));
        return records;
    }
    for (const auto& row : document) {
        const auto index = row.first.Scalar();
        if (!before.contains(index)) {
            throw TextFault{line_of(row.first), "This record was not asked for."};
        }
        records.emplace(index, value_of(row.second, element, ""));
    }
    return records; // one that was taken out stays as it is
}

std::string with_remarks(const std::string& text, const std::vector<Remark>& remarks) {
    const auto document = YAML::Load(text);
    std::multimap<std::size_t, std::string> by_line;
    for (const auto& remark : remarks) {
        const auto record = remark.index.empty() ? document : document[remark.index];
        by_line.emplace(line_of(record, remark.field),
                        remark.field.empty() ? remark.text : fmt::format("{}: {}", remark.field, remark.text));
    }
    return insert(text, by_line);
}

std::string with_remark(const std::string& text, const TextFault& fault) {
    return insert(text, {{fault.line, fault.text}});
}

std::string without_remarks(const std::string& text) {
    std::string plain;
    for (const auto& line : lines_of(text)) {
        plain += is_remark(line) ? "" : line + "\n";
    }
    return plain;
}

} // namespace xpon::oltctl
