#include "cfgdb/database.hpp"

#include "cfgdb/commit.hpp"
#include "cfgdb/factory.hpp"
#include "cfgdb/saved_configuration.hpp"
#include "cfgdb/saved_file.hpp"
#include "cfgdb/startup.hpp"
#include "cfgdb/users.hpp"
#include "serializer/object_json.hpp"
#include "xpon/core/c_function.hpp"
#include "xpon/core/call_sequence.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

#include <fmt/format.h>

namespace xpon::cfgdb {
namespace {

std::string database_folder() {
    return below_olt_root("/run/cfgdb");
}

/// Whether `path` names a part of what `parent` names, and one with at least the same indices.
bool is_below(const Element& candidate, const Element& parent) {
    return candidate.depth > parent.depth &&
           std::string_view(candidate.path).starts_with(std::string(parent.path) + ".");
}

/// Calls `visit` for every record below `id`: those that share its indices.
template <class Visit>
void for_each_below(const RecordId& id, const Visit& visit) {
    const auto elements = all_elements();
    for (std::size_t number = 0; number < elements.size(); ++number) {
        const auto& below = elements[number];
        if (!is_below(below, element(id.element))) {
            continue;
        }
        for (std::uint16_t second = 0; second < below.sizes[1]; ++second) {
            visit(RecordId{static_cast<ElementId>(number), {id.indices[0], second}});
        }
    }
}

void copy_record(const Records& records, Store store, const RecordId& id, std::byte* out) {
    const auto record = store == Store::running ? records.running(id) : records.candidate(id);
    std::memcpy(out, record.data(), record.size());
}

} // namespace

std::shared_ptr<Database> Database::shared() {
    static std::weak_ptr<Database> opened;
    auto database = opened.lock();
    if (!database) {
        database = std::make_shared<Database>(database_folder());
        opened = database;
    }
    return database;
}

bool Database::is_configured() {
    std::error_code ignored;
    return saved_file_exists() || std::filesystem::exists(database_folder() + "/data.mdb", ignored);
}

Database::Database(const std::string& folder) : environment_(folder) {
    try {
        fill_when_new(environment_);
    } catch (const std::system_error& fault) {
        throw std::runtime_error(fmt::format("Configuration database {} cannot be filled: {}", folder, fault.what()));
    }
    environment_.serve_clients();
}

/// Runs a step that writes; once more when there was no room for what only dead readers keep from reuse.
template <class Step>
std::invoke_result_t<Step> Database::with_room(const Step& step) const {
    try {
        return step();
    } catch (const std::system_error& fault) {
        if (fault.code() != std::errc::no_space_on_device || !environment_.clear_dead_readers()) {
            throw;
        }
    }
    return step();
}

void Database::read(Store store, const RecordId& id, std::byte* out) const {
    finish_sequence();
    const ReadTransaction transaction(environment_);
    copy_record(Records(transaction), store, id, out);
}

void Database::read_all(Store store, ElementId id, std::byte* out) const {
    finish_sequence();
    const ReadTransaction transaction(environment_);
    const Records records(transaction);
    for (std::uint16_t index = 0; index < element(id).sizes[0]; ++index) {
        copy_record(records, store, {id, {index, 0}}, out + std::size_t{index} * element(id).table.size);
    }
}

void Database::write(const RecordId& id, const std::byte* record) const {
    const auto& table = element(id.element).table;
    std::vector<std::byte> canonical(table.size);
    if (!serializer::copy_canonically(table, record, canonical.data())) {
        core::fail_with(EINVAL);
    }
    add_change(id, canonical);
    settle_changes();
}

void Database::reset(const RecordId& id) const {
    add_change(id, factory_record(id));
    for_each_below(id, [&](const RecordId& below) { add_change(below, factory_record(below)); });
    settle_changes();
}

void Database::add_change(const RecordId& id, Bytes record) const {
    const bool is_repeated = !sequence_.empty() && std::ranges::equal(*sequence_.back().record, record);
    sequence_.push_back({id, is_repeated
                                 ? sequence_.back().record
                                 : std::make_shared<const std::vector<std::byte>>(record.begin(), record.end())});
}

void Database::settle_changes() const {
    if (auto* const sequence = core::CallSequence::current()) {
        sequence->do_at_end([this] { return core::c_function([this] { finish_sequence(); }); });
    } else {
        finish_sequence();
    }
}

void Database::finish_sequence() const {
    if (sequence_.empty()) {
        return;
    }
    const auto changes = std::exchange(sequence_, {});
    try {
        with_room([&] { write_changes(changes); });
    } catch (const std::system_error& fault) {
        if (fault.code() != std::errc::no_space_on_device || changes.size() == 1) {
            throw;
        }
        // What comes before the one that does not fit is written all the same.
        for (const auto& change : changes) {
            write_changes({&change, 1});
        }
    }
}

void Database::write_changes(std::span<const Change> changes) const {
    in_write_transaction(environment_, [&](WriteTransaction& transaction) {
        RecordWriter writer(transaction);
        for (const auto& [id, record] : changes) {
            writer.set_candidate(id, *record);
        }
        transaction.commit();
    });
}

core::Result<std::uint64_t> Database::commit(const Acceptance& accept, ipc::Address by) const {
    finish_sequence();
    static constexpr int most_attempts = 5;
    for (int attempt = 0; attempt < most_attempts; ++attempt) {
        BOOST_OUTCOME_TRY(const auto plan, plan_commit(environment_));
        if (accept) {
            BOOST_OUTCOME_TRYV(accept(plan.applied.changes));
        }
        if (const auto number = with_room([&] { return carry_out(environment_, plan, by); })) {
            return *number;
        }
    }
    return core::ErrorPayload(core::Error::InvalidState, "configuration: Another client keeps changing the candidate");
}

void Database::rollback() const {
    finish_sequence();
    with_room([&] {
        in_write_transaction(environment_, [](WriteTransaction& transaction) {
            transaction.erase_all(Key(Store::candidate));
            transaction.commit();
        });
    });
}

void Database::save(const std::string& path) const {
    finish_sequence();
    std::string text;
    {
        const ReadTransaction transaction(environment_);
        text = print_saved_configuration(Records(transaction));
    }
    replace_saved_file(path, text);
}

void Database::set_candidate_to_factory() const {
    finish_sequence();
    with_room([&] {
        in_write_transaction(environment_, [](WriteTransaction& transaction) {
            RecordWriter writer(transaction);
            for (const auto store : {Store::candidate, Store::running}) {
                for (const auto& id : writer.list(store)) {
                    writer.set_candidate(id, factory_record(id));
                }
            }
            transaction.commit();
        });
    });
}

void Database::restart() const {
    finish_sequence();
    with_room([&] { restart_from_saved(environment_); });
}

std::optional<User_record> Database::find_user(std::string_view name) const {
    const ReadTransaction transaction(environment_);
    return cfgdb::find_user(transaction, name);
}

const Database& database_of(const void* handle) {
    if (handle == nullptr) {
        core::fail_with(EINVAL);
    }
    return *static_cast<const Database*>(handle);
}

} // namespace xpon::cfgdb
