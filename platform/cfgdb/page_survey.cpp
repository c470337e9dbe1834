#include "cfgdb/page_survey.hpp"

#include "cfgdb/checksum.hpp"
#include "cfgdb/environment.hpp"
#include "cfgdb/file_descriptor.hpp"
#include "cfgdb/page_check.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <set>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace xpon::cfgdb {
namespace {

using PageNumber = std::uint64_t;

/// Why the file is damaged.
struct Damage {
    std::string text;
};

void require_sound(bool is_sound, std::string text) {
    if (!is_sound) {
        throw Damage{std::move(text)};
    }
}

/// A status of LMDB that has an errno value has its cause outside of the file.
void require_sound(int status) {
    if (status > 0) {
        throw std::system_error(status, std::generic_category());
    }
    require_sound(status == MDB_SUCCESS, mdb_strerror(status));
}

/// What a file's head says, of which there are two: in pages 0 and 1, written in turns (LMDB's format 1).
struct Head {
    std::uint32_t page_size;
    PageNumber last_page;
    std::uint64_t transaction;
};

Head read_head(std::string_view page) {
    constexpr std::size_t offset_of_page_size = 40;
    constexpr std::size_t offset_of_last_page = 136;
    constexpr std::size_t offset_of_transaction = 144;
    Head head{};
    std::memcpy(&head.page_size, page.data() + offset_of_page_size, sizeof(head.page_size));
    std::memcpy(&head.last_page, page.data() + offset_of_last_page, sizeof(head.last_page));
    std::memcpy(&head.transaction, page.data() + offset_of_transaction, sizeof(head.transaction));
    return head;
}

std::size_t page_size() {
    constexpr long largest = 0x8000;
    return static_cast<std::size_t>(std::min(sysconf(_SC_PAGESIZE), largest));
}

std::array<Head, 2> read_heads(const FileDescriptor& file) {
    std::string pages(2 * page_size(), '\0');
    file.read_all(pages);
    require_sound(pages.size() == 2 * page_size(), "it is too short");
    return {read_head(pages), read_head(std::string_view(pages).substr(page_size()))};
}

/// Before LMDB opens the file: it maps as much as the heads say.
void check_size(const std::string& folder) {
    const FileDescriptor file(folder + "/data.mdb", O_RDONLY);
    file.require_regular();
    for (const auto& head : read_heads(file)) {
        // Pages at the end may be free and never written, but not that many.
        constexpr PageNumber most_unwritten = 1024;
        const auto pages = static_cast<PageNumber>(file.size()) / page_size() + most_unwritten;
        require_sound(head.page_size == page_size() && head.last_page < pages, "its heads do not fit");
    }
}

/// When nobody writes. LMDB takes the head of the later transaction, so one that looks older than it is would undo what
/// came after.
void check_transactions(const std::string& folder) {
    const auto [first, second] = read_heads(FileDescriptor(folder + "/data.mdb", O_RDONLY));
    const auto later = std::max(first.transaction, second.transaction);
    const bool is_new = later == 0; // both are written when the file is made
    require_sound(is_new || (later - std::min(first.transaction, second.transaction) == 1 &&
                             first.transaction % 2 == 0 && second.transaction % 2 == 1),
                  "its heads do not fit");
}

struct Closer {
    void operator()(MDB_env* environment) const {
        mdb_env_close(environment);
    }
    void operator()(MDB_txn* transaction) const {
        mdb_txn_abort(transaction);
    }
    void operator()(MDB_cursor* cursor) const {
        mdb_cursor_close(cursor);
    }
};

class Survey {
public:
    Survey(const std::string& folder, const std::function<void()>& begins) {
        MDB_env* environment = nullptr;
        require_sound(mdb_env_create(&environment));
        environment_.reset(environment);
        require_sound(mdb_env_set_mapsize(environment, Environment::map_size));
        require_sound(mdb_env_open(environment, folder.c_str(), Environment::open_flags, Environment::file_mode));
        writer_ = begin(0);
        begins();
        reader_ = begin(MDB_RDONLY);
        require_sound(mdb_dbi_open(reader_.get(), nullptr, 0, &database_));
        MDB_envinfo info{};
        require_sound(mdb_env_info(environment, &info));
        last_page_ = info.me_last_pgno;
    }

    void check_entries() {
        std::uint64_t sum = 0;
        std::optional<Seal> seal;
        walk(database_, [&](Bytes key, Bytes stored) {
            const auto value = unseal(key, stored);
            require_sound(value.has_value(), "a checksum is wrong");
            if (std::ranges::equal(key, seal_key())) {
                seal = read_seal(*value);
            } else {
                sum += share_of(stored);
            }
        });
        require_sound(seal.has_value() ? seal->sum == sum && seal->transaction == mdb_txn_id(reader_.get())
                                       : first_page_ == 0,
                      "entries are missing");
    }

    /// Those that are free must be used by nobody, and all others must be what they are used for.
    void check_pages() {
        const auto free_pages = read_free_list();
        constexpr PageNumber first_page = 2; // behind the heads
        std::size_t branches = 0;
        std::size_t leaves = 0;
        std::size_t overflows = 0;
        for (auto number = first_page; number <= last_page_;) {
            if (free_pages.contains(number)) {
                ++number;
                continue;
            }
            const auto facts = check_page(page(number), number);
            require_sound(facts.kind != PageKind::damaged && facts.pages > 0 && number + facts.pages <= last_page_ + 1,
                          "a page is damaged");
            branches += facts.kind == PageKind::branch ? 1 : 0;
            leaves += facts.kind == PageKind::leaf ? 1 : 0;
            overflows += facts.kind == PageKind::overflow ? facts.pages : 0;
            number += facts.pages;
        }
        const auto entries = statistics_of(database_);
        const auto free_list = statistics_of(free_list_database);
        require_sound(branches == entries.ms_branch_pages + free_list.ms_branch_pages &&
                          leaves == entries.ms_leaf_pages + free_list.ms_leaf_pages &&
                          overflows == entries.ms_overflow_pages + free_list.ms_overflow_pages,
                      "pages are missing");
    }

private:
    using Transaction = std::unique_ptr<MDB_txn, Closer>;

    Transaction begin(unsigned flags) {
        MDB_txn* transaction = nullptr;
        require_sound(mdb_txn_begin(environment_.get(), nullptr, flags, &transaction));
        return Transaction(transaction);
    }

    static constexpr MDB_dbi free_list_database = 0;

    [[nodiscard]] MDB_stat statistics_of(MDB_dbi database) const {
        MDB_stat statistics{};
        require_sound(mdb_stat(reader_.get(), database, &statistics));
        return statistics;
    }

    std::set<PageNumber> read_free_list() {
        std::set<PageNumber> free_pages;
        walk(free_list_database, [&](Bytes key, Bytes value) {
            std::vector<PageNumber> numbers(value.size() / sizeof(PageNumber));
            std::memcpy(numbers.data(), value.data(), numbers.size() * sizeof(PageNumber));
            require_sound(key.size() == sizeof(std::uint64_t) && !numbers.empty() && numbers[0] < numbers.size(),
                          "its list of free pages is damaged");
            for (std::size_t i = 1; i <= numbers[0]; ++i) {
                require_sound(numbers[i] > 1 && numbers[i] <= last_page_ && free_pages.insert(numbers[i]).second,
                              "its list of free pages is damaged");
            }
        });
        return free_pages;
    }

    template <class Visit>
    void walk(MDB_dbi database, const Visit& visit) {
        const auto entries = statistics_of(database).ms_entries;
        MDB_cursor* opened = nullptr;
        require_sound(mdb_cursor_open(reader_.get(), database, &opened));
        const std::unique_ptr<MDB_cursor, Closer> cursor(opened);
        MDB_val key{};
        MDB_val value{};
        std::size_t count = 0;
        int status = MDB_SUCCESS;
        while ((status = mdb_cursor_get(opened, &key, &value, MDB_NEXT)) == MDB_SUCCESS) {
            note_place_of(key);
            require_sound(count++ < entries, "it has too many entries");
            if (database != free_list_database) {
                MDB_val found{};
                require_sound(mdb_get(reader_.get(), database, &key, &found));
                require_sound(found.mv_data == value.mv_data, "an entry is not found where it is");
            }
            visit({static_cast<const std::byte*>(key.mv_data), key.mv_size},
                  {static_cast<const std::byte*>(value.mv_data), value.mv_size});
        }
        if (status != MDB_NOTFOUND) {
            require_sound(status);
        }
        require_sound(count == entries, "entries are missing");
    }

    /// A page begins with its number, which tells where all others are.
    void note_place_of(const MDB_val& data) {
        const auto address = reinterpret_cast<std::uintptr_t>(data.mv_data) / page_size() * page_size();
        PageNumber number = 0;
        std::memcpy(&number, reinterpret_cast<const void*>(address), sizeof(number));
        const auto first = address - number * page_size();
        require_sound(first_page_ == 0 || first_page_ == first, "a page is damaged");
        first_page_ = first;
    }

    [[nodiscard]] Bytes page(PageNumber number) const {
        return {reinterpret_cast<const std::byte*>(first_page_ + number * page_size()), page_size()};
    }

    std::unique_ptr<MDB_env, Closer> environment_;
    Transaction writer_; ///< never writes: it keeps others from doing so meanwhile
    Transaction reader_; ///< which alone may look at the list of free pages
    MDB_dbi database_ = 0;
    PageNumber last_page_ = 0;
    std::uintptr_t first_page_ = 0; ///< where LMDB maps it
};

} // namespace

std::string survey_database(const std::string& folder, const std::function<void()>& begins) {
    try {
        check_size(folder);
        Survey survey(folder, begins);
        check_transactions(folder);
        survey.check_entries();
        survey.check_pages();
        return {};
    } catch (const Damage& damage) {
        return damage.text;
    }
}

} // namespace xpon::cfgdb
