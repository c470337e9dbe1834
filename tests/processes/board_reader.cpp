// Asks the board as the daemon does, in each way of opening it, and other files and descriptors besides; prints what
// came back. The argument is a file that it may make.

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/ioctl.h>

#include <fcntl.h>
#include <unistd.h>

namespace {

void ask(const char* way, int fd) {
    if (fd < 0) {
        std::printf("%s: %s\n", way, std::strerror(errno));
        return;
    }
    unsigned char pon_ports = 0;
    unsigned char front_ports = 0;
    const int pon_status = ioctl(fd, 0x80014c25UL, &pon_ports);
    const int front_status = ioctl(fd, 0x80014c26UL, &front_ports);
    std::printf("%s: %d %d, %d %d\n", way, pon_status, pon_ports, front_status, front_ports);
    close(fd);
}

} // namespace

int main(int, char** arguments) {
    ask("open", open("/dev/board", O_RDONLY));
    ask("open for writing", open("/dev/board", O_RDWR | O_TRUNC | O_CREAT, 0600));
    ask("open64", open64("/dev/board", O_RDONLY));
    ask("openat", openat(AT_FDCWD, "/dev/board", O_RDONLY | O_CLOEXEC));
    ask("dup", dup(open("/dev/board", O_RDONLY)));
    ask("another file", open(arguments[0], O_RDONLY));

    int pipe_ends[2];
    int waiting = 0;
    const bool piped = pipe(pipe_ends) == 0 && write(pipe_ends[1], "abc", 3) == 3;
    const int status = piped ? ioctl(pipe_ends[0], FIONREAD, &waiting) : -1;
    std::printf("other ioctl: %d %d\n", status, waiting);
    const int made = open(arguments[1], O_CREAT | O_RDWR | O_EXCL, 0640);
    std::printf("other open: %s\n", made >= 0 ? "made" : std::strerror(errno));
    unlink(arguments[1]);
}
