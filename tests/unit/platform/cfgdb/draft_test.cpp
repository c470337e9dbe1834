#include "cfgdb/draft.hpp"
#include "cfgdb/keys.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"

#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::cfgdb {
namespace {

using Entries = std::vector<std::pair<std::vector<std::byte>, std::vector<std::byte>>>;

Entries first_entries(const Transaction& transaction, Bytes prefix, Bytes from, std::size_t count) {
    Entries entries;
    transaction.visit(prefix, from, [&](Bytes key, Bytes value) {
        entries.emplace_back(std::vector(key.begin(), key.end()), std::vector(value.begin(), value.end()));
        return entries.size() < count;
    });
    return entries;
}

class RandomEntries {
public:
    Key key() {
        return Key(Store::index).add(number(6)).add(number(6));
    }
    void change(const Key& key, ChangeableTransaction& first, ChangeableTransaction& second) {
        const std::vector value(number(3), std::byte{number(255)});
        const bool stays = number(2) != 0;
        for (auto* const transaction : {&first, &second}) {
            stays ? transaction->put(key, value) : transaction->erase(key);
        }
    }
    std::uint8_t number(unsigned most) {
        return static_cast<std::uint8_t>(random_() % (most + 1));
    }

private:
    std::mt19937 random_{1}; // NOLINT(bugprone-random-generator-seed): a failure must come again
};

TEST(Draft, ShowsAndMakesWhatAWritingTransactionDoes) {
    const test::TemporaryOltRoot root;
    const CfgDbWrapper client("TEST");
    const auto& environment = test::database_of(client).environment();
    RandomEntries random;
    in_write_transaction(environment, [&](WriteTransaction& stored) {
        for (int entry = 0; entry < 20; ++entry) {
            stored.put(random.key(), {});
        }
        stored.commit();
    });
    Draft draft(environment);
    const Key all(Store::index);
    Entries written;
    in_write_transaction(environment, [&](WriteTransaction& writing) {
        for (int step = 0; step < 2000; ++step) {
            random.change(random.key(), draft, writing);
            const auto prefix = random.number(1) == 0 ? all : Key(all).add(random.number(6));
            const auto from = Key(prefix).add(random.number(6));
            const auto count = 1U + random.number(49);
            ASSERT_EQ(first_entries(draft, prefix, from, count), first_entries(writing, prefix, from, count)) << step;
            ASSERT_EQ(draft.get(from).has_value(), writing.get(from).has_value()) << step;
        }
        written = first_entries(writing, all, all, 100);
    });
    const auto changes = draft.take_changes();
    in_write_transaction(environment, [&](WriteTransaction& writing) {
        make_changes(changes, writing);
        EXPECT_EQ(first_entries(writing, all, all, 100), written);
    });
}

} // namespace
} // namespace xpon::cfgdb
