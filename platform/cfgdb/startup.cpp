#include "cfgdb/startup.hpp"

#include "cfgdb/commit.hpp"
#include "cfgdb/commit_log.hpp"
#include "cfgdb/durable_file.hpp"
#include "cfgdb/ont_index.hpp"
#include "cfgdb/saved_configuration.hpp"
#include "cfgdb/users.hpp"
#include "serializer/stamp.hpp"
#include "xpon/peer_side/database_log.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <cerrno>
#include <filesystem>
#include <functional>
#include <optional>
#include <system_error>

#include <malloc.h>

namespace xpon::cfgdb {
namespace {

/// Says that a database is filled, and by which version: its value is the stamp of all elements.
Key fill_mark() {
    return Key(Store::meta).add("filled");
}

std::uint64_t schema_stamp() {
    serializer::Stamp stamp;
    for (const auto& row : all_elements()) {
        stamp.add(std::string_view(row.suffix));
        stamp.add(static_cast<std::int64_t>(row.table.stamp));
    }
    return stamp.value();
}

void put_fill_mark(WriteTransaction& transaction) {
    const auto stamp = schema_stamp();
    transaction.put(fill_mark(), std::as_bytes(std::span(&stamp, 1)));
}

bool is_of_this_version(Bytes mark) {
    const auto stamp = schema_stamp();
    return std::ranges::equal(mark, std::as_bytes(std::span(&stamp, 1)));
}

/// Empty, with a line in the log, when the file cannot be used; without one when there is none.
std::optional<SavedRecords> load(const std::string& path) {
    try {
        auto records = parse_saved_configuration(read_file(path));
        if (records.has_value()) {
            return std::move(records).value();
        }
        core::log_error(database_log(), "Saved configuration {} cannot be used: {}", path,
                        records.error().info->message);
    } catch (const std::system_error& fault) {
        if (fault.code().value() != ENOENT) {
            core::log_error(database_log(), "Saved configuration cannot be read: {}", fault.what());
        }
    }
    return {};
}

/// Lets the records run, if the checks let them.
bool apply(WriteTransaction& transaction, const SavedRecords& records, const std::string& path) {
    RecordWriter writer(transaction);
    for (const auto& [id, record] : records) {
        writer.set_candidate(id, record);
    }
    const auto applied = apply_candidate(transaction);
    if (applied.has_error() && applied.error().code != core::Error::Empty) {
        core::log_error(database_log(), "Saved configuration {} cannot be used: {}", path,
                        applied.error().info->message);
        return false;
    }
    return true;
}

/// The tree of a large saved file takes ten times the memory that the process needs from then on.
class MemoryGivenBack {
public:
    MemoryGivenBack() = default;
    MemoryGivenBack(const MemoryGivenBack&) = delete;
    MemoryGivenBack& operator=(const MemoryGivenBack&) = delete;
    ~MemoryGivenBack() {
        malloc_trim(0);
    }
};

/// Runs `prepare` in a writing transaction, which says whether to go on; then the best saved configuration is applied
/// and the transaction committed. Every file is tried in a transaction of its own, so nothing of a bad one stays.
void start(const Environment& environment, const std::function<bool(WriteTransaction&)>& prepare) {
    const MemoryGivenBack memory;
    const auto saved = below_olt_root(saved_configuration_path);
    for (const auto& path : {saved, previous_file(saved)}) {
        const auto records = load(path);
        if (!records) {
            continue;
        }
        WriteTransaction transaction(environment);
        if (!prepare(transaction)) {
            return;
        }
        if (apply(transaction, *records, path)) {
            log_replacement(transaction);
            transaction.commit();
            core::log(database_log(), core::LogLevel::Info, "Started with the saved configuration {}", path);
            return;
        }
    }
    WriteTransaction transaction(environment);
    if (prepare(transaction)) {
        log_replacement(transaction);
        transaction.commit();
        core::log(database_log(), core::LogLevel::Info, "Started with the factory configuration");
    }
}

void erase_all(WriteTransaction& transaction) {
    const Records records(transaction);
    for (const auto store : {Store::running, Store::candidate}) {
        for (const auto& id : records.list(store)) {
            transaction.erase(record_key(store, id));
        }
    }
    clear_ont_index(transaction);
}

// Another version ran here before. Its records that are the same stay, the others are factory state from now on.
void bring_up_to_date(const Environment& environment) {
    WriteTransaction transaction(environment);
    const auto mark = transaction.get(fill_mark());
    if (mark && is_of_this_version(*mark)) {
        return;
    }
    RecordWriter writer(transaction);
    for (const auto store : {Store::running, Store::candidate}) {
        writer.drop_foreign(store);
    }
    rebuild_ont_index(transaction);
    put_fill_mark(transaction);
    log_replacement(transaction);
    transaction.commit();
}

} // namespace

bool saved_configuration_exists() {
    const auto saved = below_olt_root(saved_configuration_path);
    std::error_code ignored;
    return std::filesystem::exists(saved, ignored) || std::filesystem::exists(previous_file(saved), ignored);
}

void fill_when_new(const Environment& environment) {
    bool is_filled = false;
    {
        const ReadTransaction transaction(environment);
        const auto mark = transaction.get(fill_mark());
        if (mark && is_of_this_version(*mark)) {
            return;
        }
        is_filled = mark.has_value();
    }
    if (is_filled) {
        return bring_up_to_date(environment);
    }
    start(environment, [](WriteTransaction& transaction) {
        if (transaction.get(fill_mark())) {
            return false; // another process was faster
        }
        put_default_users(transaction);
        put_fill_mark(transaction);
        return true;
    });
}

void restart_from_saved(const Environment& environment) {
    start(environment, [](WriteTransaction& transaction) {
        erase_all(transaction);
        return true;
    });
}

} // namespace xpon::cfgdb
