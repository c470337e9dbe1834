#include "client/oltctl/text_file.hpp"

#include "client/oltctl/failure.hpp"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>

#include <fmt/format.h>

namespace xpon::oltctl {

std::string read_text_file(const std::string& path) {
    std::ifstream file;
    if (path != "-") {
        file.open(path, std::ios::binary);
    }
    std::istream& input = path == "-" ? std::cin : file;
    std::string text{std::istreambuf_iterator<char>(input), {}};
    if (input.bad() || (path != "-" && !file.is_open())) {
        throw Failure(ExitStatus::usage,
                      fmt::format("'{}' cannot be read: {}", path, std::generic_category().message(errno)));
    }
    return text;
}

} // namespace xpon::oltctl
