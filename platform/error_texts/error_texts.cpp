#include "xpon/error_texts/json_errors.hpp"

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

struct ErrorText {
    Json_errors index;
    const char* text;
};

constexpr std::array error_texts{
    ErrorText{Json_errors::no_error, "No error"},
    ErrorText{Json_errors::request_not_processed, "Request could not be processed"},
    ErrorText{Json_errors::cannot_parse, "Index or request data cannot be parsed"},
    ErrorText{Json_errors::wrong_index_count, "Wrong number of indices"},
    ErrorText{Json_errors::access_denied, "Access denied"},
    ErrorText{Json_errors::wrong_config_type, "Configuration type is missing or wrong"},
    ErrorText{Json_errors::commit_failed, "Commit failed: {p0}"},
    ErrorText{Json_errors::unknown_key, "Unknown key {p0}"},
    ErrorText{Json_errors::wrong_type, "Wrong type, expected {p0}"},
    ErrorText{Json_errors::out_of_range, "Value {p0} is out of range {p1} to {p2}"},
    ErrorText{Json_errors::not_a_multiple, "Value {p0} is not a multiple of {p1}"},
    ErrorText{Json_errors::text_too_long, "Text is too long, {p0} bytes of at most {p1}"},
    ErrorText{Json_errors::text_too_short, "Text is too short, {p0} bytes of at least {p1}"},
    ErrorText{Json_errors::bad_character, "Character not allowed at byte {p0}, expected {p1}"},
    ErrorText{Json_errors::unknown_name, "Value {p0} is not one of {p1}"},
    ErrorText{Json_errors::bad_ipv4_address, "Bad IPv4 address {p0}"},
    ErrorText{Json_errors::bad_mac_address, "Bad MAC address {p0}"},
    ErrorText{Json_errors::bad_number_list, "Bad port or VLAN list {p0}"},
    ErrorText{Json_errors::too_many_items, "Array has {p0} items, at most {p1} allowed"},
    ErrorText{Json_errors::contradiction, "Fields contradict each other: {p0}"},
    ErrorText{Json_errors::bad_serial_size, "Serial must have {p0} bytes, has {p1}"},
    ErrorText{Json_errors::not_obfuscated, "Text is not in obfuscated form"},
    ErrorText{Json_errors::repeated_key, "Key {p0} is repeated"},
    ErrorText{Json_errors::repeated_item, "Item {p0} is repeated"},
};

} // namespace

int get_json_errors_from_index(Json_errors index, const char** text) {
    const auto* found = std::ranges::find(error_texts, index, &ErrorText::index);
    if (text == nullptr || found == error_texts.end()) {
        errno = EINVAL;
        return -1;
    }
    *text = found->text;
    return 0;
}
