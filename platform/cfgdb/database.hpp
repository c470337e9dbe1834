#pragma once

#include "cfgdb/element.hpp"
#include "cfgdb/environment.hpp"
#include "cfgdb/records.hpp"
#include "xpon/cfgdb/user_record.hpp"
#include "xpon/core/result.hpp"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace xpon::cfgdb {

/// The configuration database of this process. Its state is in the file, shared with other processes; every call is
/// one transaction. Faults of the database are thrown as std::system_error.
class Database {
public:
    /// The process's open database; opened by the first caller, closed when the last pointer goes. Throws
    /// std::runtime_error with the path and the cause.
    static std::shared_ptr<Database> shared();
    /// Whether there is a database to open, without opening it.
    static bool exists();

    explicit Database(const std::string& folder);

    /// Reads one record; `out` has the size of its type.
    void read(Store store, const RecordId& id, std::byte* out) const;

    /// Sets one record of the candidate. Throws std::system_error EINVAL for a record that no reader makes, such as a
    /// list of more elements than it has room for.
    void write(const RecordId& id, const std::byte* record) const;

    /// Puts a record of the candidate, and those of the elements below it, back to factory state.
    void reset(const RecordId& id) const;

    /// Makes the candidate's changes run, all or none, and returns what changed. Errors: Empty, InvalidState.
    [[nodiscard]] core::Result<std::vector<RecordId>> commit() const;

    void rollback() const;

    [[nodiscard]] std::optional<User_record> find_user(std::string_view name) const;

private:
    void fill_when_new() const;

    Environment environment_;
};

} // namespace xpon::cfgdb
