#include "serializer/field_errors.hpp"

#include "xpon/core/utf8.hpp"

#include <array>
#include <string>
#include <utility>

namespace xpon::serializer {
namespace {

constexpr std::array parameter_keys{"p0", "p1", "p2"};

/// The beginning of a text that is too long to be sent back, cut between two characters.
std::string cut(std::string_view text) {
    constexpr std::size_t longest = 256;
    if (text.size() <= longest) {
        return std::string(text);
    }
    auto length = longest;
    const auto continues = [&](std::size_t at) { return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U; };
    while (length > longest - 4 && continues(length)) {
        --length;
    }
    return std::string(text.substr(0, length)) + "...";
}

// What a client sent may hold any bytes, and megabytes of them; what goes back must be valid JSON.
Tree make_text(std::string_view text) {
    return owned(cJSON_CreateString(core::replace_invalid_utf8(cut(text)).c_str()));
}

Tree make_parameter(const FieldErrors::Parameter& parameter) {
    if (const auto* number = std::get_if<double>(&parameter)) {
        return owned(cJSON_CreateNumber(*number));
    }
    return make_text(std::get<std::string_view>(parameter));
}

Tree make_error(Json_errors index, std::string_view path, std::initializer_list<FieldErrors::Parameter> parameters) {
    const char* text = "";
    get_json_errors_from_index(index, &text);
    auto parameters_object = owned(cJSON_CreateObject());
    const auto* key = parameter_keys.begin();
    for (const auto& parameter : parameters) {
        add_member(*parameters_object, *key++, make_parameter(parameter));
    }
    auto message = owned(cJSON_CreateObject());
    add_member(*message, "key", owned(cJSON_CreateString(text)));
    add_member(*message, "params", std::move(parameters_object));
    auto error = owned(cJSON_CreateObject());
    add_member(*error, "message", std::move(message));
    add_member(*error, "path", make_text(path));
    return error;
}

} // namespace

std::string Path::text() const {
    std::string result = parent_ == nullptr ? "" : parent_->text() + ".";
    return result += is_position_ ? std::to_string(position_) : std::string(key_);
}

void FieldErrors::add(Json_errors index, const Path& path, std::initializer_list<Parameter> parameters) {
    if (!full()) {
        add(index, path.text(), parameters);
    }
}

void FieldErrors::add(Json_errors index, std::string_view path, std::initializer_list<Parameter> parameters) {
    if (full()) {
        return;
    }
    if (!array_) {
        array_ = owned(cJSON_CreateArray());
    }
    append(*array_, make_error(index, path, parameters));
    ++count_;
}

} // namespace xpon::serializer
