#include "cfgdb/startup.hpp"

#include "cfgdb/carry_over.hpp"
#include "cfgdb/commit_log.hpp"
#include "cfgdb/durable_file.hpp"
#include "cfgdb/running_start.hpp"
#include "cfgdb/saved_file.hpp"
#include "cfgdb/users.hpp"
#include "serializer/stamp.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <cerrno>
#include <functional>
#include <system_error>

#include <fmt/format.h>
#include <malloc.h>

namespace xpon::cfgdb {
namespace {

/// Says that a database is filled, and by which version: its value is the stamp of all elements.
Key fill_mark() {
    return Key(Store::meta).add("filled");
}

/// Another release may check more, also where its records look the same.
std::uint64_t schema_stamp() {
    serializer::Stamp stamp;
    stamp.add(std::string_view(XPON_VERSION));
    for (const auto& row : all_elements()) {
        stamp.add(std::string_view(row.suffix));
        stamp.add(static_cast<std::int64_t>(row.table.stamp));
    }
    return stamp.value();
}

enum class FilledBy { nobody, another_version, this_version };

FilledBy who_filled(const Transaction& transaction) {
    const auto stamp = schema_stamp();
    const auto mark = transaction.get(fill_mark());
    if (!mark) {
        return FilledBy::nobody;
    }
    const bool is_ours = std::ranges::equal(*mark, std::as_bytes(std::span(&stamp, 1)));
    return is_ours ? FilledBy::this_version : FilledBy::another_version;
}

void mark_as_filled(WriteTransaction& transaction) {
    const auto stamp = schema_stamp();
    transaction.put(fill_mark(), std::as_bytes(std::span(&stamp, 1)));
    put_layouts(transaction);
}

void erase_records(WriteTransaction& transaction) {
    for (const auto store : {Store::running, Store::candidate, Store::index}) {
        transaction.erase_all(Key(store));
    }
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

/// The records that a start begins with, the outcome in the report, and the file that they are from.
struct Choice {
    RecordList records;
    std::string path; ///< "" for the factory state
    std::string text; ///< of the file
};

Choice choose_configuration(StartReport& report) {
    const auto saved = saved_file();
    std::string because;
    for (const auto& path : {saved, previous_file(saved)}) {
        StartReport departures;
        auto loaded = load_saved_file(path, departures);
        if (loaded.records) {
            report.append(departures);
            report.set_outcome(fmt::format("Started with the saved configuration {}{}", path, because));
            return {std::move(*loaded.records), path, std::move(loaded.text)};
        }
        if (!loaded.fault.empty()) {
            because += fmt::format("{} {} cannot be used: {}", because.empty() ? ", because" : ";", path, loaded.fault);
            report.add(fmt::format("Saved configuration {} cannot be used: {}", path, loaded.fault));
        }
        if (!loaded.text.empty()) {
            keep_original(path, loaded.text, report);
        }
    }
    report.set_outcome("Started with the factory configuration" +
                       (because.empty() ? ", because there is no saved one" : because));
    return {};
}

/// Runs `prepare` in a writing transaction, which says whether to go on; then the best saved configuration is made to
/// run. False when `prepare` said no.
bool start(const Environment& environment, StartReport& report, const std::function<bool(WriteTransaction&)>& prepare) {
    const MemoryGivenBack memory;
    auto choice = choose_configuration(report);
    const auto complete = [&](WriteTransaction& transaction) {
        if (!choice.path.empty() && !report.empty()) {
            keep_original(choice.path, choice.text, report);
        }
        log_replacement(transaction);
        report.store(transaction);
    };
    return run_what_fits(environment, std::move(choice.records), {prepare, complete}, report);
}

/// False when another process was faster.
bool fill_new(const Environment& environment, StartReport& report) {
    if (!environment.damage().empty()) {
        report.add(fmt::format("The configuration database was damaged and is made anew: {}", environment.damage()));
    }
    return start(environment, report, [](WriteTransaction& transaction) {
        if (who_filled(transaction) != FilledBy::nobody) {
            return false;
        }
        put_default_users(transaction);
        mark_as_filled(transaction);
        return true;
    });
}

/// The same.
bool carry_over(const Environment& environment, StartReport& report) {
    const MemoryGivenBack memory;
    RecordList running;
    RecordList candidate;
    {
        const ReadTransaction transaction(environment);
        running = read_foreign_records(transaction, Store::running, report);
        candidate = read_foreign_records(transaction, Store::candidate, report);
    }
    report.set_outcome(
        fmt::format("Started with the {} running records of another version of this program", running.size()));
    const auto prepare = [](WriteTransaction& transaction) {
        if (who_filled(transaction) != FilledBy::another_version) {
            return false;
        }
        erase_records(transaction);
        return true;
    };
    const auto complete = [&](WriteTransaction& transaction) {
        RecordWriter writer(transaction);
        for (const auto& [id, record] : candidate) {
            writer.set_candidate(id, record);
        }
        mark_as_filled(transaction);
        log_replacement(transaction);
        report.store(transaction);
    };
    return run_what_fits(environment, std::move(running), {prepare, complete}, report);
}

void remove_leftovers_of_saves() {
    try {
        remove_leftovers(saved_file());
    } catch (const std::system_error& fault) {
        if (fault.code().value() != ENOENT) {
            core::log(database_log(), core::LogLevel::Warning, "Leftovers of a save stay: {}", fault.what());
        }
    }
}

FilledBy who_filled(const Environment& environment) {
    const ReadTransaction transaction(environment);
    return who_filled(transaction);
}

} // namespace

void fill_when_new(const Environment& environment) {
    remove_leftovers_of_saves();
    StartReport report;
    const auto filled_by = who_filled(environment);
    const bool is_done = filled_by == FilledBy::nobody            ? fill_new(environment, report)
                         : filled_by == FilledBy::another_version ? carry_over(environment, report)
                                                                  : false;
    if (is_done) {
        return report.tell();
    }
    const ReadTransaction transaction(environment);
    tell_stored_report(transaction);
}

void restart_from_saved(const Environment& environment) {
    StartReport report;
    start(environment, report, [](WriteTransaction& transaction) {
        erase_records(transaction);
        return true;
    });
    report.tell();
}

} // namespace xpon::cfgdb
