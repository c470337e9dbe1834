#pragma once

#include <cstddef>
#include <string_view>

namespace xpon::bench {

/// A way to bring a text and the NUL behind it to a client.
struct Sending {
    std::string_view name;
    bool no_delay; ///< TCP_NODELAY from the beginning
    void (*send)(int fd, std::string_view text);
};

/// Throws std::invalid_argument on an unknown name.
const Sending& find_sending(std::string_view name);

void set_tcp_option(int fd, int option, int on);

} // namespace xpon::bench
