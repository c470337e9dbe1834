// A preload library in the manner of the cwrap wrappers: the character device /dev/board of a simulated OLT.
//
// The file $OLT_ROOT/run/board says what the board has: "pon_ports N" and "front_ports N", a line each. Opening the
// device opens that file, so that without one it is as missing as on a machine without the board, and descriptors
// behave as descriptors do. The board's two read requests are answered by any descriptor of a file that begins like
// that. Every other call is handed on as it came.

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr auto device = "/dev/board";

struct Fact {
    unsigned long request; ///< read ioctl of one byte, type 'L'
    const char* key;
};
constexpr Fact facts[] = {{0x80014c25UL, "pon_ports "}, {0x80014c26UL, "front_ports "}};

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool is_device(const char* path) {
    return path != nullptr && std::strcmp(path, device) == 0;
}

/// Whatever the caller wanted to do with the device, its file is only read.
int open_board(int flags) {
    char path[4096];
    const char* root = std::getenv("OLT_ROOT"); // NOLINT(concurrency-mt-unsafe): nothing changes the environment
    const int size = std::snprintf(path, sizeof path, "%s/run/board", root == nullptr ? "" : root);
    if (size < 0 || static_cast<size_t>(size) >= sizeof path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    return next<int(int, const char*, int, ...)>("openat")(AT_FDCWD, path,
                                                           O_RDONLY | (flags & (O_CLOEXEC | O_NONBLOCK)));
}

/// The number behind `key` in the board's file; -1 when `fd` is no such file.
int read_fact(int fd, const char* key) {
    char text[256];
    const auto size = pread(fd, text, sizeof text - 1, 0);
    if (size <= 0) {
        return -1;
    }
    text[size] = '\0';
    if (std::strncmp(text, facts[0].key, std::strlen(facts[0].key)) != 0) {
        return -1;
    }
    const char* at = std::strstr(text, key);
    if (at == nullptr) {
        return -1;
    }
    const long number = std::strtol(at + std::strlen(key), nullptr, 10);
    return number >= 0 && number <= 255 ? static_cast<int>(number) : -1;
}

/// Whether the request was the board's and is answered, with the call's result.
bool answer_as_board(int fd, unsigned long request, void* argument, int& result) {
    for (const auto& fact : facts) {
        if (request == fact.request) {
            const int saved = errno;
            const int number = read_fact(fd, fact.key);
            errno = saved;
            if (number < 0) {
                return false;
            }
            if (argument == nullptr) {
                errno = EFAULT;
                result = -1;
                return true;
            }
            *static_cast<unsigned char*>(argument) = static_cast<unsigned char>(number);
            result = 0;
            return true;
        }
    }
    return false;
}

bool takes_mode(int flags) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

/// The optional third argument of open.
unsigned mode_of(int flags, va_list arguments) {
    return takes_mode(flags) ? va_arg(arguments, unsigned) : 0;
}

} // namespace

#define EXPORTED extern "C" __attribute__((visibility("default")))

// The C library's names; its parameters' names are reserved ones.
// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
EXPORTED int open(const char* path, int flags, ...) {
    if (is_device(path)) {
        return open_board(flags);
    }
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = mode_of(flags, arguments);
    va_end(arguments);
    return next<decltype(open)>("open")(path, flags, mode);
}

EXPORTED int openat(int folder, const char* path, int flags, ...) {
    // An absolute path makes the folder meaningless.
    if (is_device(path)) {
        return open_board(flags);
    }
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = mode_of(flags, arguments);
    va_end(arguments);
    return next<decltype(openat)>("openat")(folder, path, flags, mode);
}

// The same functions on the 64-bit machines that this runs on.
static_assert(sizeof(off_t) == sizeof(off64_t));
EXPORTED int open64(const char* path, int flags, ...) __attribute__((alias("open")));
EXPORTED int openat64(int folder, const char* path, int flags, ...) __attribute__((alias("openat")));

// What open becomes where the flags are no constant and the C library's checks are on.
EXPORTED int __open_2(const char* path, int flags) {
    return is_device(path) ? open_board(flags) : next<int(const char*, int)>("__open_2")(path, flags);
}

EXPORTED int ioctl(int fd, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    int result = 0;
    return answer_as_board(fd, request, argument, result) ? result
                                                          : next<decltype(ioctl)>("ioctl")(fd, request, argument);
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)
