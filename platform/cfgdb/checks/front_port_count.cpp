#include "cfgdb/checks/front_port_count.hpp"

#include "cfgdb/element.hpp"

#include <algorithm>
#include <cerrno>

#include <sys/ioctl.h>

#include <fcntl.h>
#include <unistd.h>

namespace xpon::cfgdb {
namespace {

constexpr unsigned long read_front_port_count = _IOR('L', 0x26, std::uint8_t);

/// 0 when the board does not tell.
std::uint8_t ask_board() {
    std::uint8_t count = 0;
    const int board = open("/dev/board", O_RDONLY | O_CLOEXEC);
    if (board >= 0) {
        if (ioctl(board, read_front_port_count, &count) != 0) {
            count = 0;
        }
        close(board);
    }
    errno = 0;
    return count;
}

} // namespace

unsigned front_port_count() {
    static std::uint8_t known = 0;
    if (known == 0) {
        known = ask_board();
    }
    const unsigned records = element(element_of<FrontPort>).sizes[0];
    return known == 0 ? records : std::min<unsigned>(known, records);
}

} // namespace xpon::cfgdb
