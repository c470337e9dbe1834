#pragma once

#include "cfgdb/element.hpp"
#include "cfgdb/environment.hpp"
#include "cfgdb/records.hpp"
#include "xpon/cfgdb/user_record.hpp"
#include "xpon/core/result.hpp"
#include "xpon/ipc/address.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace xpon::cfgdb {

/// The configuration database of this process. Its state is in the file, shared with other processes; every call is
/// one transaction. Faults of the database are thrown as std::system_error.
class Database {
public:
    /// The process's open database; opened by the first caller, closed when the last pointer goes. Throws
    /// std::runtime_error with the path and the cause.
    static std::shared_ptr<Database> shared();
    /// Whether there is a configuration to open or to load, without doing so.
    static bool is_configured();

    explicit Database(const std::string& folder);

    /// Reads one record; `out` has the size of its type.
    void read(Store store, const RecordId& id, std::byte* out) const;

    /// Reads all records of an element of depth 1, one behind the other.
    void read_all(Store store, ElementId id, std::byte* out) const;

    /// Sets one record of the candidate. Throws std::system_error EINVAL for a record that no reader makes, such as a
    /// list of more elements than it has room for. The writes of a core::CallSequence become one transaction at its
    /// end or, if that does not fit, as many as do, in their order.
    void write(const RecordId& id, const std::byte* record) const;

    /// Puts a record of the candidate, and those of the elements below it, back to factory state. The same holds.
    void reset(const RecordId& id) const;

    /// Judges the changes of a commit that has passed all checks; its error refuses them.
    using Acceptance = std::function<core::Result<void>(std::span<const RecordId> changes)>;
    /// Makes the candidate's changes run, all or none, and returns the number of the commit. Nothing is locked while
    /// `accept`, which may be empty, judges. Errors: Empty, InvalidState, that of `accept`.
    [[nodiscard]] core::Result<std::uint64_t> commit(const Acceptance& accept, ipc::Address by = {}) const;

    void rollback() const;

    /// Writes running to a file.
    void save(const std::string& path) const;
    void set_candidate_to_factory() const;
    /// Running becomes what a start would make it.
    void restart() const;

    [[nodiscard]] std::optional<User_record> find_user(std::string_view name) const;

    /// For readers that need several records of one moment.
    [[nodiscard]] const Environment& environment() const {
        return environment_;
    }

private:
    /// A record of the candidate and what it is to become; the bytes may be shared by many.
    struct Change {
        RecordId id;
        std::shared_ptr<const std::vector<std::byte>> record;
    };

    void add_change(const RecordId& id, Bytes record) const;
    void settle_changes() const;
    void finish_sequence() const;
    void write_changes(std::span<const Change> changes) const;
    template <class Step>
    std::invoke_result_t<Step> with_room(const Step& step) const;

    Environment environment_;
    mutable std::vector<Change> sequence_; ///< what the call sequence that is going on has set so far
};

/// The database behind the handle that C functions get. Throws std::system_error EINVAL for null.
const Database& database_of(const void* handle);

} // namespace xpon::cfgdb
