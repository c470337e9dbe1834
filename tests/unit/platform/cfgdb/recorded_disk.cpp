#include "tests/unit/platform/cfgdb/recorded_disk.hpp"

#include "cfgdb/durable_file.hpp"

#include <span>
#include <utility>

#include <sys/stat.h>

namespace xpon::test {
namespace {

RecordedDisk* recording = nullptr;

using Step = RecordedDisk::Step;

/// The name of a path in the recorded folder; empty for one elsewhere.
std::string name_of(const char* path) {
    const std::filesystem::path whole(path);
    return recording != nullptr && whole.parent_path() == recording->folder() ? whole.filename().string() : "";
}

void record_name(Step::Kind kind, const char* path, const char* new_path = nullptr) {
    if (auto name = name_of(path); !name.empty()) {
        recording->add({.kind = kind, .name = std::move(name), .more = new_path == nullptr ? "" : name_of(new_path)});
    }
}

void record_link(const char* from, const char* to) {
    struct stat status{};
    if (auto name = name_of(to); !name.empty() && stat(from, &status) == 0) {
        recording->add({.kind = Step::Kind::link, .file = status.st_ino, .name = std::move(name)});
    }
}

void record_descriptor(int fd, Step::Kind kind, std::string data = {}) {
    struct stat status{};
    if (recording == nullptr || fstat(fd, &status) != 0) {
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        struct stat folder{};
        if (stat(recording->folder().c_str(), &folder) == 0 && folder.st_ino == status.st_ino) {
            recording->add({.kind = Step::Kind::sync_folder});
        }
    } else if (S_ISREG(status.st_mode)) {
        recording->add({.kind = kind, .file = status.st_ino, .more = std::move(data)});
    }
}

} // namespace

RecordedDisk::RecordedDisk(std::filesystem::path folder) : folder_(std::move(folder)) {
    if (std::filesystem::exists(folder_)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
            struct stat status{};
            stat(entry.path().c_str(), &status);
            names_[entry.path().filename()] = status.st_ino;
            files_[status.st_ino].synced = cfgdb::read_file(entry.path());
        }
    }
    recording = this;
}

RecordedDisk::~RecordedDisk() {
    recording = nullptr;
}

void RecordedDisk::apply(const Step& step, Names& names) {
    switch (step.kind) {
    case Step::Kind::link:
        names[step.name] = step.file;
        break;
    case Step::Kind::rename:
        if (const auto moved = names.extract(step.name)) {
            names[step.more] = moved.mapped();
        }
        break;
    case Step::Kind::unlink:
        names.erase(step.name);
        break;
    default:
        break;
    }
}

std::vector<FolderContents> RecordedDisk::after_power_cut(std::size_t count) const {
    auto files = files_;
    auto names = names_;
    std::vector<Step> unsynced;
    for (const auto& step : std::span(steps_).first(count)) {
        auto& file = files[step.file];
        if (step.kind == Step::Kind::data) {
            file.unsynced += step.more;
        } else if (step.kind == Step::Kind::sync) {
            file.synced += std::exchange(file.unsynced, {});
        } else if (step.kind == Step::Kind::sync_folder) {
            for (const auto& change : std::exchange(unsynced, {})) {
                apply(change, names);
            }
        } else {
            unsynced.push_back(step);
        }
    }
    std::vector<FolderContents> left;
    for (std::size_t reached = 0;; ++reached) {
        for (const std::size_t half_parts : {0U, 1U, 2U}) {
            FolderContents contents;
            for (const auto& [name, file] : names) {
                const auto& [synced, rest] = files[file];
                contents[name] = synced + rest.substr(0, rest.size() * half_parts / 2);
            }
            left.push_back(std::move(contents));
        }
        if (reached == unsynced.size()) {
            return left;
        }
        apply(unsynced[reached], names);
    }
}

} // namespace xpon::test

// NOLINTBEGIN: the names and the form are the linker's
using namespace xpon::test;

extern "C" ssize_t __real_write(int fd, const void* buffer, size_t size);
extern "C" ssize_t __wrap_write(int fd, const void* buffer, size_t size) {
    const auto written = __real_write(fd, buffer, size);
    if (written > 0) {
        record_descriptor(fd, Step::Kind::data,
                          std::string(static_cast<const char*>(buffer), static_cast<size_t>(written)));
    }
    return written;
}

extern "C" int __real_fsync(int fd);
extern "C" int __wrap_fsync(int fd) {
    const int status = __real_fsync(fd);
    record_descriptor(fd, Step::Kind::sync);
    return status;
}

#define RECORDED(name, parameters, arguments, record)                                                                  \
    extern "C" int __real_##name parameters;                                                                           \
    extern "C" int __wrap_##name parameters {                                                                          \
        const int status = __real_##name arguments;                                                                    \
        if (status == 0) {                                                                                             \
            record;                                                                                                    \
        }                                                                                                              \
        return status;                                                                                                 \
    }

RECORDED(link, (const char* from, const char* to), (from, to), record_link(from, to))
RECORDED(linkat, (int from_fd, const char* from, int to_fd, const char* to, int flags),
         (from_fd, from, to_fd, to, flags), record_link(from, to))
RECORDED(rename, (const char* from, const char* to), (from, to), record_name(Step::Kind::rename, from, to))
RECORDED(unlink, (const char* path), (path), record_name(Step::Kind::unlink, path))
// NOLINTEND
