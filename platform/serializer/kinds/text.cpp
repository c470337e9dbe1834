#include "serializer/characters.hpp"
#include "serializer/kinds/kind_functions.hpp"
#include "serializer/record_memory.hpp"
#include "xpon/obfuscation/obfuscation.h"

#include <algorithm>
#include <cerrno>
#include <string>

namespace xpon::serializer {
namespace {

void set_default(const Field& field, std::byte* record) {
    store_text(field, record, field.default_text);
}

bool has_good_length(const Field& field, std::size_t length, FieldErrors& errors, const Path& path) {
    const auto bytes = static_cast<double>(length);
    if (length > static_cast<std::size_t>(field.max)) {
        errors.add(Json_errors::text_too_long, path, {bytes, static_cast<double>(field.max)});
        return false;
    }
    if (length < static_cast<std::size_t>(field.min) && (length > 0 || !field.may_be_empty)) {
        errors.add(Json_errors::text_too_short, path, {bytes, static_cast<double>(field.min)});
        return false;
    }
    return true;
}

void read(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    const auto text = expect_string(value, errors, path);
    if (!text || !has_good_length(field, text->size(), errors, path)) {
        return;
    }
    if (const auto wrong = find_wrong_character(field.characters, *text)) {
        errors.add(Json_errors::bad_character, path, {static_cast<double>(*wrong), name_of(field.characters)});
        return;
    }
    store_text(field, record, *text);
}

Tree write(const Field& field, const std::byte* record, FieldErrors& errors, const Path& path) {
    const auto text = load_text(field, record);
    if (text.size() == field.size) {
        errors.add(Json_errors::text_too_long, path,
                   {static_cast<double>(text.size()), static_cast<double>(field.size - 1)});
        return nullptr;
    }
    return owned(cJSON_CreateString(text.data()));
}

bool copy(const Field& field, const std::byte* from, std::byte* to) {
    const auto text = load_text(field, from);
    store_text(field, to, text);
    return text.size() < field.size;
}

void read_secret(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    const auto form = expect_string(value, errors, path);
    if (!form) {
        return;
    }
    std::string plain(form->size() + 1, '\0');
    if (text_deobfuscate(form->data(), plain.data()) != 0) {
        if (errno == ENOMEM) {
            throw std::bad_alloc();
        }
        return errors.add(Json_errors::not_obfuscated, path);
    }
    const auto length = std::char_traits<char>::length(plain.c_str());
    std::ranges::fill(plain, '\0');
    // "" is no secret at all; the form of an empty text is one, and short.
    if (form->empty() || has_good_length(field, length, errors, path)) {
        store_text(field, record, *form);
    }
}

} // namespace

constinit const KindFunctions text_functions{set_default, read, write, copy};
constinit const KindFunctions secret_functions{set_default, read_secret, write, copy};

} // namespace xpon::serializer
