#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

namespace xpon::test {

/// A folder as a power cut may leave it: names and what the files hold.
using FolderContents = std::map<std::string, std::string>;

/// What a program does to the files of a folder, as far as the disk is concerned: while the object lives, the calls
/// that write, sync, link, rename and unlink are recorded. The linker puts the recording ones in their place. One at a
/// time.
class RecordedDisk {
public:
    /// What is in the folder now counts as synced.
    explicit RecordedDisk(std::filesystem::path folder);
    RecordedDisk(const RecordedDisk&) = delete;
    RecordedDisk& operator=(const RecordedDisk&) = delete;
    ~RecordedDisk();

    struct Step {
        enum class Kind { data, sync, link, rename, unlink, sync_folder };

        Kind kind;
        ino_t file = 0;
        std::string name{}; ///< in the folder
        std::string more{}; ///< the bytes, or the new name
    };
    void add(Step step) {
        steps_.push_back(std::move(step));
    }
    [[nodiscard]] const std::filesystem::path& folder() const {
        return folder_;
    }
    [[nodiscard]] std::size_t size() const {
        return steps_.size();
    }

    /// What a power cut behind the first `count` steps may leave. Data that was not synced is there, half there or
    /// gone. Of names that were not synced the last ones are gone: they reach a disk in their order.
    [[nodiscard]] std::vector<FolderContents> after_power_cut(std::size_t count) const;

private:
    using Names = std::map<std::string, ino_t>;

    struct File {
        std::string synced;
        std::string unsynced;
    };

    static void apply(const Step& step, Names& names);

    std::filesystem::path folder_;
    std::map<ino_t, File> files_;
    Names names_;
    std::vector<Step> steps_;
};

} // namespace xpon::test
