#include "cfgdb/database.hpp"

#include "cfgdb/commit.hpp"
#include "cfgdb/factory.hpp"
#include "cfgdb/saved_configuration.hpp"
#include "cfgdb/saved_file.hpp"
#include "cfgdb/startup.hpp"
#include "cfgdb/users.hpp"
#include "serializer/object_json.hpp"
#include "xpon/core/c_function.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <filesystem>
#include <stdexcept>
#include <string>

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
}

void Database::read(Store store, const RecordId& id, std::byte* out) const {
    const ReadTransaction transaction(environment_);
    copy_record(Records(transaction), store, id, out);
}

void Database::read_all(Store store, ElementId id, std::byte* out) const {
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
    WriteTransaction transaction(environment_);
    RecordWriter(transaction).set_candidate(id, canonical);
    transaction.commit();
}

void Database::reset(const RecordId& id) const {
    WriteTransaction transaction(environment_);
    RecordWriter writer(transaction);
    writer.set_candidate(id, factory_record(id));
    for_each_below(id, [&](const RecordId& below) { writer.set_candidate(below, factory_record(below)); });
    transaction.commit();
}

core::Result<std::vector<RecordId>> Database::commit(const Acceptance& accept) const {
    WriteTransaction transaction(environment_);
    BOOST_OUTCOME_TRY(auto changes, apply_candidate(transaction));
    BOOST_OUTCOME_TRY(accept(changes));
    transaction.commit();
    return changes;
}

void Database::rollback() const {
    WriteTransaction transaction(environment_);
    RecordWriter writer(transaction);
    for (const auto& id : writer.list(Store::candidate)) {
        writer.reject(id);
    }
    transaction.commit();
}

void Database::save(const std::string& path) const {
    std::string text;
    {
        const ReadTransaction transaction(environment_);
        text = print_saved_configuration(Records(transaction));
    }
    replace_saved_file(path, text);
}

void Database::set_candidate_to_factory() const {
    WriteTransaction transaction(environment_);
    RecordWriter writer(transaction);
    for (const auto store : {Store::candidate, Store::running}) {
        for (const auto& id : writer.list(store)) {
            writer.set_candidate(id, factory_record(id));
        }
    }
    transaction.commit();
}

void Database::restart() const {
    restart_from_saved(environment_);
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
