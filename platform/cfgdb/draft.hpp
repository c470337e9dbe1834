#pragma once

#include "cfgdb/transaction.hpp"

#include <map>
#include <memory>
#include <memory_resource>
#include <optional>

namespace xpon::cfgdb {

/// What a writing transaction would do, worked out on what is stored now. Nothing is locked meanwhile, and nothing
/// happens until somebody makes the changes.
class Draft final : public ChangeableTransaction {
public:
    explicit Draft(const Environment& environment);
    ~Draft();

    [[nodiscard]] std::optional<Bytes> get(Bytes key) const override;
    void visit(Bytes prefix, Bytes from, const Visitor& visit) const override;
    void put(Bytes key, Bytes value) override;
    void erase(Bytes key) override;

    /// As LMDB sorts keys.
    struct KeyOrder {
        bool operator()(Bytes left, Bytes right) const;
    };
    /// Those of a whole configuration take megabytes in tens of thousands of pieces: they go all at once.
    struct Changes {
        using Memory = std::pmr::monotonic_buffer_resource;

        std::unique_ptr<Memory> memory = std::make_unique<Memory>(); ///< owns the entries and their bytes
        /// The values of new and changed entries, none for those that go.
        std::pmr::map<Bytes, std::optional<Bytes>, KeyOrder> entries{memory.get()};
    };
    Changes take_changes();

private:
    /// What may fail for want of memory is there before the reader, which nobody would give back then.
    Draft(const Environment& environment, Changes changes);

    Bytes keep(Bytes bytes);
    void set(Bytes key, std::optional<Bytes> kept);

    Changes changes_;
};

void make_changes(const Draft::Changes& changes, WriteTransaction& transaction);

} // namespace xpon::cfgdb
