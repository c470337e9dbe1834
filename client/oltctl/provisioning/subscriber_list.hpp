#pragma once

#include <string>
#include <vector>

namespace xpon::oltctl {

/// A new ONT and what it is to get.
struct Subscriber {
    unsigned port = 0;
    unsigned ont = 0; ///< 0: the first that is free
    std::string serial;
    std::string ont_template; ///< name or number
    std::string description;
};

/// The rows of a table as RFC 4180 has it, with a line of titles: port, serial and template, and if wanted ont and
/// description, in any order. Failure (usage) with the line for a table of another form.
std::vector<Subscriber> parse_subscriber_list(const std::string& text);

} // namespace xpon::oltctl
