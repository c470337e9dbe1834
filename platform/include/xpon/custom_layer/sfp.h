#pragma once

#include <cstdint>

/// Whether a port has an optical module.
enum sfp_condition : std::uint8_t {
    sfp_absent = 0,
    sfp_present = 1,
    sfp_excluded_from_polling = 2,
};

/// An optical module as it identifies itself [SFF-8472]. The texts are empty unless `condition` is sfp_present.
struct Sfp_identification {
    sfp_condition condition;
    char condition_text[16]; ///< "Present", or "Warning" or "Alarm" when a measured value is outside such limits
    char vendor[17];
    char part_number[17];
    char revision[5];
};
