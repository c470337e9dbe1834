#include "xpon/custom_layer/log_files.h"

#include "custom_layer/c_block.hpp"
#include "xpon/core/c_function.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <set>
#include <string>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace xpon;
using namespace xpon::custom_layer;

/// Files that a program is about to rotate away may vanish while they are looked at.
bool is_log(const fs::directory_entry& entry) {
    std::error_code vanished;
    return entry.path().extension() == ".log" && entry.path().filename().native().front() != '.' &&
           entry.is_regular_file(vanished) && entry.file_size(vanished) > 0 && !vanished;
}

std::set<std::string> find_logs() {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(below_olt_root("/var/log"))) {
        if (is_log(entry)) {
            names.insert(entry.path().filename().string());
        }
    }
    return names;
}

CBlock<char> copy(const std::string& text) {
    auto block = make_block<char>(text.size());
    std::ranges::copy(text, block.get());
    return block;
}

/// An array of malloc blocks in one of its own.
char** copy_names(const std::set<std::string>& names) {
    std::vector<CBlock<char>> copies;
    std::ranges::transform(names, std::back_inserter(copies), copy);
    auto array = make_block<char*>(copies.size() * sizeof(char*));
    std::ranges::transform(copies, array.get(), [](auto& name) { return name.release(); });
    return array.release();
}

} // namespace

int custom_layer__get_list_log_files(const void* db, int, char*** names, std::uint32_t* count) {
    return core::c_function([&] {
        if (db == nullptr || names == nullptr || count == nullptr) {
            core::fail_with(EINVAL);
        }
        *names = nullptr;
        *count = 0;
        const auto logs = find_logs();
        if (!logs.empty()) {
            *names = copy_names(logs);
            *count = static_cast<std::uint32_t>(logs.size());
        }
    });
}
