#include "xpon/custom_layer/log_files.h"

#include "custom_layer/peer_request.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <filesystem>
#include <set>
#include <string>
#include <system_error>

namespace {

namespace fs = std::filesystem;
using xpon::custom_layer::fail;

/// Files that a program is about to rotate away may vanish while they are looked at.
bool is_log(const fs::directory_entry& entry) {
    std::error_code vanished;
    return entry.path().extension() == ".log" && entry.path().filename().native().front() != '.' &&
           entry.is_regular_file(vanished) && entry.file_size(vanished) > 0 && !vanished;
}

std::set<std::string> find_logs() {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(xpon::below_olt_root("/var/log"))) {
        if (is_log(entry)) {
            names.insert(entry.path().filename().string());
        }
    }
    return names;
}

/// Null without memory; nothing is left then.
char** copy_names(const std::set<std::string>& names) {
    auto** const copies = static_cast<char**>(std::calloc(names.size(), sizeof(char*)));
    std::size_t count = 0;
    for (auto name = names.begin(); copies != nullptr && name != names.end(); ++name) {
        copies[count] = ::strdup(name->c_str());
        if (copies[count++] == nullptr) {
            std::for_each_n(copies, count, [](char* copy) { std::free(copy); });
            std::free(copies);
            return nullptr;
        }
    }
    return copies;
}

} // namespace

int custom_layer__get_list_log_files(const void* db, int, char*** names, std::uint32_t* count) {
    if (db == nullptr || names == nullptr || count == nullptr) {
        return fail(EINVAL);
    }
    *names = nullptr;
    *count = 0;
    try {
        const auto logs = find_logs();
        if (logs.empty()) {
            return 0;
        }
        *names = copy_names(logs);
        *count = *names == nullptr ? 0 : static_cast<std::uint32_t>(logs.size());
        return *names == nullptr ? fail(ENOMEM) : 0;
    } catch (const fs::filesystem_error& error) {
        return fail(error.code().value());
    } catch (const std::bad_alloc&) {
        return fail(ENOMEM);
    }
}
