#include "client/oltctl/commands/command_line.hpp"

#include <csignal>
#include <iostream>

int main(int count, char** arguments) {
    std::signal(SIGPIPE, SIG_IGN); // writing to a reader that is gone fails, and that is dealt with
    std::ios::sync_with_stdio(false);
    return xpon::oltctl::run_command_line(count, arguments, XPON_VERSION);
}
