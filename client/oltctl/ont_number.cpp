#include "client/oltctl/ont_number.hpp"

#include "client/oltctl/configuration/index_list.hpp"
#include "client/oltctl/failure.hpp"

#include <fmt/format.h>

namespace xpon::oltctl {

OntNumber parse_ont_number(const std::string& text) {
    const auto slash = text.find('/');
    if (slash == std::string::npos) {
        throw Failure(ExitStatus::usage,
                      fmt::format("'{}' is no ONT. Write PON port and ONT, such as 3/17 or 3/1-8.", text));
    }
    OntNumber number{.port = text.substr(0, slash), .ont = text.substr(slash + 1)};
    numbers_of(number.port); // they are looked at before anything is asked for
    numbers_of(number.ont);
    return number;
}

} // namespace xpon::oltctl
