#include "cfgdb/commit_log.hpp"

#include "cfgdb/database.hpp"
#include "cfgdb/keys.hpp"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace xpon::cfgdb {
namespace {

/// Who has missed more than that reads all, as for a commit of more than that.
constexpr std::uint64_t most_commits = 64;
constexpr std::size_t most_changes = 4096;

Key number_key() {
    return Key(Store::meta).add("commit");
}

Key commit_key(std::uint64_t number) {
    return Key(Store::commits).add(number);
}

/// In front of the changes and the ONTs of a commit.
struct EntryHeader {
    std::uint32_t by;
    std::uint32_t changes;
    std::uint32_t onts;
};

template <class Value>
void append(std::vector<std::byte>& bytes, std::span<const Value> values) {
    const auto added = std::as_bytes(values);
    bytes.insert(bytes.end(), added.begin(), added.end());
}

std::vector<std::byte> entry_of(const RunningCommit& commit) {
    const EntryHeader header{.by = commit.by.value,
                             .changes = static_cast<std::uint32_t>(commit.changes.size()),
                             .onts = static_cast<std::uint32_t>(commit.onts.size())};
    std::vector<std::byte> entry;
    append(entry, std::span(&header, 1));
    append(entry, std::span(commit.changes));
    append(entry, std::span(commit.onts));
    return entry;
}

template <class Value>
std::vector<Value> take(Bytes& entry, std::size_t count) {
    std::vector<Value> values(count);
    if (count != 0) {
        std::memcpy(values.data(), entry.data(), count * sizeof(Value));
    }
    entry = entry.subspan(count * sizeof(Value));
    return values;
}

/// Empty for an entry of another release.
std::optional<RunningCommit> commit_of(std::uint64_t number, Bytes entry) {
    if (entry.size() < sizeof(EntryHeader)) {
        return {};
    }
    const auto header = take<EntryHeader>(entry, 1).front();
    if (entry.size() != header.changes * sizeof(service::Config_change) + header.onts * sizeof(std::uint16_t)) {
        return {};
    }
    RunningCommit commit{.number = number, .by = {header.by}, .changes = {}, .onts = {}};
    commit.changes = take<service::Config_change>(entry, header.changes);
    commit.onts = take<std::uint16_t>(entry, header.onts);
    return commit;
}

void put_number(WriteTransaction& transaction, std::uint64_t number) {
    transaction.put(number_key(), std::as_bytes(std::span(&number, 1)));
}

} // namespace

std::uint64_t commit_number(const Transaction& transaction) {
    std::uint64_t number = 0;
    const auto value = transaction.get(number_key());
    if (value && value->size() == sizeof number) {
        std::memcpy(&number, value->data(), sizeof number);
    }
    return number;
}

std::uint64_t log_commit(WriteTransaction& transaction, RunningCommit commit) {
    commit.number = commit_number(transaction) + 1;
    put_number(transaction, commit.number);
    if (commit.changes.size() <= most_changes) {
        transaction.put(commit_key(commit.number), entry_of(commit));
    }
    transaction.erase(commit_key(commit.number - most_commits));
    return commit.number;
}

void log_replacement(WriteTransaction& transaction) {
    using std::chrono::microseconds;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto since_1970 = static_cast<std::uint64_t>(std::chrono::duration_cast<microseconds>(now).count());
    // Nothing is known of the way there, so who knows the number before reads all.
    transaction.erase_all(Key(Store::commits));
    put_number(transaction, std::max(commit_number(transaction) + 1, since_1970));
}

RunningCommits commits_since(const Transaction& transaction, std::uint64_t number) {
    RunningCommits since{.number = commit_number(transaction)};
    since.is_complete = number <= since.number && since.number - number <= most_commits;
    while (since.is_complete && number < since.number) {
        const auto entry = transaction.get(commit_key(++number));
        auto commit = entry ? commit_of(number, *entry) : std::nullopt;
        since.is_complete = commit.has_value();
        if (commit) {
            since.commits.push_back(*std::move(commit));
        }
    }
    return since;
}

std::uint64_t running_number(const void* db) {
    const ReadTransaction transaction(database_of(db).environment());
    return commit_number(transaction);
}

RunningCommits running_commits_since(const void* db, std::uint64_t number) {
    const ReadTransaction transaction(database_of(db).environment());
    return commits_since(transaction, number);
}

} // namespace xpon::cfgdb
