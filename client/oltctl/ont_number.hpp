#pragma once

#include <string>

namespace xpon::oltctl {

/// One ONT as people write it: "3/17" is ONT 17 of PON port 3. Lists stand for several: "3/1-8".
struct OntNumber {
    std::string port;
    std::string ont;
};

/// Failure (usage) for a text of another form.
OntNumber parse_ont_number(const std::string& text);

} // namespace xpon::oltctl
