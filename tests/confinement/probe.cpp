// Tries what a taken-over daemon would try, and what the daemon needs. Run under the settings of its unit
// (packaging/machine/session does), it prints a line for each and ends with 1 when one of them went otherwise.
// It stands alone, without libraries, so that it runs in any machine.

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/klog.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/personality.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/netlink.h>
#include <linux/reboot.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <unistd.h>

namespace {

bool closed(int fd) {
    return fd >= 0 && close(fd) == 0;
}

bool reads(const char* path) {
    return closed(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

bool writes(const char* path) {
    const bool done = closed(open(path, O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    const int error = errno;
    if (done) {
        unlink(path);
    }
    errno = error;
    return done;
}

bool has_socket(int family, int type, int protocol = 0) {
    return closed(socket(family, type | SOCK_CLOEXEC, protocol));
}

bool sends_to(const char* address) {
    sockaddr_in there{};
    there.sin_family = AF_INET;
    there.sin_port = htons(9);
    inet_pton(AF_INET, address, &there.sin_addr);
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const bool done = sendto(fd, "x", 1, 0, reinterpret_cast<const sockaddr*>(&there), sizeof(there)) == 1;
    const int error = errno;
    close(fd);
    errno = error;
    return done;
}

bool forces_send_buffer() {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int size = 32 * 1024 * 1024;
    const bool done = setsockopt(fd, SOL_SOCKET, SO_SNDBUFFORCE, &size, sizeof(size)) == 0;
    close(fd);
    return done;
}

bool has_memory(int protection) {
    return mmap(nullptr, 4096, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) != MAP_FAILED;
}

bool makes_written_memory_executable() {
    void* const page = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return page != MAP_FAILED && mprotect(page, 4096, PROT_READ | PROT_EXEC) == 0;
}

/// Of a file of its own, below /tmp, which is its own, too.
bool on_own_file(bool (*change)(const char*)) {
    constexpr auto path = "/tmp/probe";
    const bool done = closed(open(path, O_WRONLY | O_CREAT | O_CLOEXEC, 0600)) && change(path);
    const int error = errno;
    unlink(path);
    errno = error;
    return done;
}

bool runs(const char* program) {
    const pid_t child = fork();
    if (child == 0) {
        execl(program, program, nullptr);
        _exit(1);
    }
    int status = -1;
    return waitpid(child, &status, 0) == child && status == 0;
}

bool may_dump_core() {
    rlimit limit{};
    errno = EPERM;
    return getrlimit(RLIMIT_CORE, &limit) == 0 && limit.rlim_max != 0;
}

bool becomes_real_time() {
    const sched_param parameters{.sched_priority = 1};
    return sched_setscheduler(0, SCHED_FIFO, &parameters) == 0;
}

struct Attempt {
    bool is_allowed;
    const char* what;
    bool (*succeeds)();
};

constexpr Attempt attempts[] = {
    {true, "write to /configuration", [] { return writes("/configuration/.probe"); }},
    {true, "write to /var/log", [] { return writes("/var/log/.probe"); }},
    {true, "write to /run/cfgdb", [] { return writes("/run/cfgdb/.probe"); }},
    {true, "write to /run/api_service", [] { return writes("/run/api_service/.probe"); }},
    {true, "read /etc/shadow, for PAM", [] { return reads("/etc/shadow"); }},
    {true, "run a program, for PAM", [] { return runs("/bin/true"); }},
    {true, "a send buffer of 32 MiB", [] { return forces_send_buffer(); }},
    {true, "a socket to ask the kernel about sockets",
     [] { return has_socket(AF_NETLINK, SOCK_DGRAM, NETLINK_SOCK_DIAG); }},
    {true, "send to 127.0.0.1", [] { return sends_to("127.0.0.1"); }},

    {false, "write to /etc", [] { return writes("/etc/probe"); }},
    {false, "write to /usr", [] { return writes("/usr/probe"); }},
    {false, "write to /run", [] { return writes("/run/probe"); }},
    {false, "write to /run/lock", [] { return writes("/run/lock/probe"); }},
    {false, "write beside the peers' sockets", [] { return writes("/run/ipc/probe"); }},
    {false, "write to /firmware", [] { return writes("/firmware/probe"); }},
    {false, "write to /sys/fs/cgroup", [] { return writes("/sys/fs/cgroup/probe"); }},
    {false, "set a kernel variable", [] { return closed(open("/proc/sys/kernel/hostname", O_WRONLY | O_CLOEXEC)); }},
    {false, "see the files of users", [] { return reads("/home/admin"); }},
    {false, "read a file that is another user's alone", [] { return reads("/etc/probe.secret"); }},
    {false, "read the disk itself", [] { return reads("/dev/vda"); }},
    {false, "read the kernel's messages", [] { return reads("/dev/kmsg") || klogctl(3, nullptr, 0) >= 0; }},
    {false, "send to another address", [] { return sends_to("198.51.100.1"); }},
    {false, "a socket of IPv6", [] { return has_socket(AF_INET6, SOCK_STREAM); }},
    {false, "a socket for raw frames", [] { return has_socket(AF_PACKET, SOCK_RAW); }},
    {false, "memory to write and execute", [] { return has_memory(PROT_READ | PROT_WRITE | PROT_EXEC); }},
    {false, "execute what was written", [] { return makes_written_memory_executable(); }},
    {false, "a namespace of its own", [] { return unshare(CLONE_NEWNS) == 0; }},
    {false, "a user namespace", [] { return unshare(CLONE_NEWUSER) == 0; }},
    {false, "mount", [] { return mount("none", "/tmp", "tmpfs", 0, nullptr) == 0; }},
    {false, "trace a process", [] { return ptrace(PTRACE_ATTACH, 1, nullptr, nullptr) == 0; }},
    {false, "become another user", [] { return setuid(1000) == 0; }},
    {false, "give a file away",
     [] { return on_own_file([](const char* path) { return chown(path, 1000, 1000) == 0; }); }},
    {false, "make a program set-uid",
     [] { return on_own_file([](const char* path) { return chmod(path, S_ISUID | S_IRWXU) == 0; }); }},
    {false, "set the clock",
     [] {
         const timeval time{.tv_sec = 1, .tv_usec = 0};
         return settimeofday(&time, nullptr) == 0;
     }},
    {false, "set the host name", [] { return sethostname("probe", 5) == 0; }},
    {false, "load a module", [] { return syscall(SYS_init_module, nullptr, 0UL, "") == 0; }},
    {false, "restart the machine",
     [] {
         return syscall(SYS_reboot, LINUX_REBOOT_MAGIC1, LINUX_REBOOT_MAGIC2, LINUX_REBOOT_CMD_CAD_ON, nullptr) == 0;
     }},
    {false, "another personality", [] { return personality(PER_LINUX32) != -1; }},
    {false, "real-time scheduling", [] { return becomes_real_time(); }},
    {false, "dump core", [] { return may_dump_core(); }},
};

} // namespace

int main() {
    // Some of the attempts would harm the machine if they succeeded.
    if (prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) != 1 || prctl(PR_GET_SECCOMP, 0, 0, 0, 0) != SECCOMP_MODE_FILTER) {
        std::puts("Run this under the settings of api-service.service.");
        return 2;
    }
    bool is_well = true;
    for (const auto& attempt : attempts) {
        errno = 0;
        const bool done = attempt.succeeds();
        const int error = errno;
        const bool as_meant = done == attempt.is_allowed;
        is_well = is_well && as_meant;
        std::printf("%s: %s: %s\n", as_meant ? "ok" : "FAILED", attempt.what,
                    done ? "done" : std::strerror(error)); // NOLINT(concurrency-mt-unsafe): one thread
    }
    return is_well ? 0 : 1;
}
