#include "ranges/board_ports.hpp"

#include "xpon/core/unique_fd.hpp"
#include "xpon/ranges/port_ranges.h"

#include <algorithm>
#include <cerrno>

#include <sys/ioctl.h>

#include <fcntl.h>

namespace xpon::ranges {
namespace {

constexpr unsigned long count_pon_ports = _IOR('L', 0x25, char);
constexpr unsigned long count_front_ports = _IOR('L', 0x26, char);

/// One number of ports, kept once the board has told it.
class PortCount {
public:
    PortCount(unsigned long request, std::uint32_t at_most) : request_(request), at_most_(at_most) {}

    std::uint32_t get() {
        if (count_ == 0) {
            const int errno_before = errno;
            count_ = ask();
            errno = errno_before;
        }
        return count_ == 0 ? at_most_ : std::min<std::uint32_t>(count_, at_most_);
    }

private:
    [[nodiscard]] std::uint8_t ask() const {
        const core::UniqueFd board(::open("/dev/board", O_RDONLY | O_CLOEXEC));
        std::uint8_t count = 0;
        return board && ::ioctl(board.get(), request_, &count) == 0 ? count : std::uint8_t{0};
    }

    unsigned long request_;
    std::uint32_t at_most_;
    std::uint8_t count_ = 0;
};

} // namespace

std::uint32_t board_pon_ports() {
    static PortCount count(count_pon_ports, max_pon_ports);
    return count.get();
}

std::uint32_t board_uplink_ports() {
    static PortCount count(count_front_ports, max_uplink_ports);
    return count.get();
}

} // namespace xpon::ranges
