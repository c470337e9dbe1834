#include "api_service/protocol/board.hpp"

#include "xpon/core/unique_fd.hpp"

#include <cerrno>

#include <sys/ioctl.h>

#include <fcntl.h>

namespace xpon::api_service {
namespace {

constexpr unsigned char board_ioctl_type = 'L';
constexpr unsigned long read_pon_port_count = _IOR(board_ioctl_type, 0x25, std::uint8_t);
constexpr unsigned long read_front_port_count = _IOR(board_ioctl_type, 0x26, std::uint8_t);

std::uint8_t remembered_count(std::uint8_t& cache, unsigned long request) {
    if (cache == 0) {
        const core::UniqueFd board(::open("/dev/board", O_RDONLY | O_CLOEXEC));
        if (board && ::ioctl(board.get(), request, &cache) != 0) {
            cache = 0;
        }
        errno = 0;
    }
    return cache;
}

} // namespace

std::uint8_t board_pon_port_count() {
    static std::uint8_t cache = 0;
    return remembered_count(cache, read_pon_port_count);
}

std::uint8_t board_front_port_count() {
    static std::uint8_t cache = 0;
    return remembered_count(cache, read_front_port_count);
}

} // namespace xpon::api_service
