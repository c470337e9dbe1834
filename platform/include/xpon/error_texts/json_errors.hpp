#pragma once

#include <cstdint>

/// Index of an API error text. `{p0}`.. in a text name the positional parameters of the error.
enum class Json_errors : std::uint16_t {
    no_error = 0,
    request_not_processed = 9,
    cannot_parse = 10,
    wrong_index_count = 11,
    access_denied = 12,
    wrong_config_type = 13,
    commit_failed = 14,
    unknown_key = 20,
    wrong_type = 21,
    out_of_range = 22,
    not_a_multiple = 23,
    text_too_long = 24,
    text_too_short = 25,
    bad_character = 26,
    unknown_name = 27,
    bad_ipv4_address = 28,
    bad_mac_address = 29,
    bad_number_list = 30,
    too_many_items = 31,
    contradiction = 32,
    bad_serial_size = 33,
    not_obfuscated = 34,
    repeated_key = 35,
    repeated_item = 36,
};

extern "C" {

/// Points `text` at the text of `index`, a constant that lives as long as the program. No two indices share a text.
/// Returns 0, or -1 with errno EINVAL when there is no such text.
int get_json_errors_from_index(Json_errors index, const char** text);

} // extern "C"
