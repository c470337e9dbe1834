#include "cfgdb/draft.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace xpon::cfgdb {

Draft::Draft(const Environment& environment) : Draft(environment, Changes()) {}

Draft::Draft(const Environment& environment, Changes changes)
    : ChangeableTransaction(environment, environment.acquire_reader()), changes_(std::move(changes)) {}

Draft::~Draft() {
    environment_.release_reader(transaction_);
}

bool Draft::KeyOrder::operator()(Bytes left, Bytes right) const {
    return std::ranges::lexicographical_compare(left, right);
}

std::optional<Bytes> Draft::get(Bytes key) const {
    const auto changed = changes_.entries.find(key);
    return changed == changes_.entries.end() ? Transaction::get(key) : changed->second;
}

void Draft::visit(Bytes prefix, Bytes from, const Visitor& visit) const {
    auto changed = changes_.entries.lower_bound(from);
    bool goes_on = true;
    // The changed ones that are to come, up to `end` if there is one.
    const auto visit_changed = [&](std::optional<Bytes> end) {
        for (; goes_on && changed != changes_.entries.end(); ++changed) {
            const auto& [key, value] = *changed;
            if (!std::ranges::equal(prefix, key.first(std::min(prefix.size(), key.size()))) ||
                (end && !KeyOrder()(key, *end))) {
                return;
            }
            goes_on = !value || visit(key, *value);
        }
    };
    Transaction::visit(prefix, from, [&](Bytes key, Bytes value) {
        visit_changed(key);
        const bool is_changed = changed != changes_.entries.end() && std::ranges::equal(changed->first, key);
        goes_on = goes_on && (is_changed || visit(key, value));
        return goes_on;
    });
    visit_changed(std::nullopt);
}

void Draft::put(Bytes key, Bytes value) {
    set(key, keep(value));
}

void Draft::erase(Bytes key) {
    set(key, std::nullopt);
}

Bytes Draft::keep(Bytes bytes) {
    auto* const place = static_cast<std::byte*>(changes_.memory->allocate(bytes.size(), 1));
    std::ranges::copy(bytes, place);
    return {place, bytes.size()};
}

void Draft::set(Bytes key, std::optional<Bytes> kept) {
    if (const auto found = changes_.entries.find(key); found != changes_.entries.end()) {
        found->second = kept;
    } else {
        changes_.entries.emplace(keep(key), kept);
    }
}

Draft::Changes Draft::take_changes() {
    return std::move(changes_);
}

void make_changes(const Draft::Changes& changes, WriteTransaction& transaction) {
    for (const auto& [key, value] : changes.entries) {
        if (value) {
            transaction.put(key, *value);
        } else {
            transaction.erase(key);
        }
    }
}

} // namespace xpon::cfgdb
