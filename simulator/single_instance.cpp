#include "simulator/single_instance.hpp"

#include "xpon/peer_side/olt_root.hpp"

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include <sys/file.h>
#include <sys/stat.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace xpon::simulator {
namespace {

[[noreturn]] void fail(const std::string& path) {
    throw std::system_error(errno, std::generic_category(), path);
}

core::UniqueFd open_locked(const std::string& path) {
    // For the owner alone: whoever may open a file may lock it.
    core::UniqueFd file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    if (!file || ::fchmod(file.get(), S_IRUSR | S_IWUSR) != 0) {
        fail(path);
    }
    if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
        return file;
    }
    if (errno != EWOULDBLOCK) {
        fail(path);
    }
    std::array<char, 32> pid{};
    const auto size = ::pread(file.get(), pid.data(), pid.size() - 1, 0);
    std::string owner(pid.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
    throw std::runtime_error(fmt::format("process {} simulates the OLT in {} already; stop it first",
                                         owner.substr(0, owner.find('\n')), below_olt_root("/")));
}

/// Whether the file that was locked is still the one of that name: its last owner removes it when it ends.
bool is_at(int file, const std::string& path) {
    struct stat open_file{};
    struct stat named_file{};
    return ::fstat(file, &open_file) == 0 && ::stat(path.c_str(), &named_file) == 0 &&
           open_file.st_ino == named_file.st_ino && open_file.st_dev == named_file.st_dev;
}

} // namespace

SingleInstance::SingleInstance() : path_(below_olt_root("/run/olt_simulator.pid")) {
    do {
        file_ = open_locked(path_);
    } while (!is_at(file_.get(), path_));
    const auto pid = fmt::format("{}\n", ::getpid());
    if (::ftruncate(file_.get(), 0) != 0 ||
        ::pwrite(file_.get(), pid.data(), pid.size(), 0) != static_cast<ssize_t>(pid.size())) {
        fail(path_);
    }
}

SingleInstance::~SingleInstance() {
    ::unlink(path_.c_str());
}

} // namespace xpon::simulator
