#pragma once

#include "simulator/plant/ont_layout.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <boost/iterator/iterator_facade.hpp>

namespace xpon::simulator {

/// What there is of configured ONTs, by their flat indices from 0; any below `max_onts` may be missing. Found, added
/// and removed at the same cost however many there are, as every answer about all ONTs asks for each of them several
/// times. A reference to an entry lasts until another one is added or removed.
template <class Value>
class OntTable {
public:
    using Entry = std::pair<std::uint16_t, Value>; ///< flat index first

    /// Entries ascending by index.
    class Iterator : public boost::iterator_facade<Iterator, const Entry, boost::forward_traversal_tag> {
    public:
        Iterator() = default;
        Iterator(const OntTable& table, std::size_t index) : table_(&table), index_(index) {
            skip_missing();
        }

    private:
        friend class boost::iterator_core_access;
        [[nodiscard]] const Entry& dereference() const {
            return table_->entries_[table_->slots_[index_]];
        }
        [[nodiscard]] bool equal(const Iterator& other) const {
            return index_ == other.index_;
        }
        void increment() {
            ++index_;
            skip_missing();
        }
        void skip_missing() {
            while (index_ < table_->slots_.size() && table_->slots_[index_] == missing) {
                ++index_;
            }
        }

        const OntTable* table_ = nullptr;
        std::size_t index_ = 0;
    };

    [[nodiscard]] Iterator begin() const {
        return {*this, 0};
    }
    [[nodiscard]] Iterator end() const {
        return {*this, slots_.size()};
    }
    [[nodiscard]] std::size_t size() const {
        return entries_.size();
    }
    [[nodiscard]] bool contains(std::uint16_t index) const {
        return find(index) != nullptr;
    }
    /// Null when it is missing.
    [[nodiscard]] const Value* find(std::uint16_t index) const {
        return index < slots_.size() && slots_[index] != missing ? &entries_[slots_[index]].second : nullptr;
    }
    /// Throws std::out_of_range when it is missing.
    /// @{
    [[nodiscard]] const Value& at(std::uint16_t index) const {
        const auto* const found = find(index);
        return found != nullptr ? *found : throw std::out_of_range("no such ONT");
    }
    [[nodiscard]] Value& at(std::uint16_t index) {
        return const_cast<Value&>(std::as_const(*this).at(index));
    }
    /// @}
    /// Added when it is missing. Throws std::out_of_range for an index that no ONT has.
    Value& operator[](std::uint16_t index) {
        if (!contains(index)) {
            slots_.resize(max_onts, missing);
            auto& slot = slots_.at(index);
            entries_.emplace_back(index, Value{});
            slot = static_cast<std::uint16_t>(entries_.size() - 1);
        }
        return at(index);
    }
    /// Gives what was there.
    std::optional<Value> take(std::uint16_t index) {
        if (!contains(index)) {
            return std::nullopt;
        }
        auto& entry = entries_[slots_[index]];
        std::optional value(std::move(entry.second));
        const auto slot = std::exchange(slots_[index], missing);
        if (index != entries_.back().first) {
            slots_[entries_.back().first] = slot;
            entry = std::move(entries_.back());
        }
        entries_.pop_back();
        return value;
    }

    bool operator==(const OntTable& other) const {
        return std::ranges::equal(*this, other);
    }

    template <class Archive>
    void archive(Archive& state) {
        auto entries = std::vector<Entry>(begin(), end());
        state(entries);
        if constexpr (Archive::reads) {
            *this = {};
            for (auto& [index, value] : entries) {
                (*this)[index] = std::move(value);
            }
        }
    }

private:
    static constexpr std::uint16_t missing = 0xffff;

    std::vector<std::uint16_t> slots_; ///< by index, into `entries_`; empty before the first entry
    std::vector<Entry> entries_;
};

} // namespace xpon::simulator
