#include "api_service/request_memory.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <sys/mman.h>

#include <cjson/cJSON.h>
#include <malloc.h>
#include <string.h> // NOLINT(modernize-deprecated-headers): explicit_bzero is no part of <cstring>

namespace xpon::api_service {
namespace {

constexpr std::size_t chunk_size = 64UL * 1024;
constexpr std::size_t chunk_count = RequestMemory::most_bytes / chunk_size;
constexpr std::size_t alignment = alignof(std::max_align_t);

/// A range of addresses, cut into chunks. Memory stands behind those alone that have been written to.
class Arena {
public:
    /// False when the range cannot be had.
    bool open() {
        void* const range = ::mmap(nullptr, RequestMemory::most_bytes, PROT_READ | PROT_WRITE,
                                   MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (range == MAP_FAILED) {
            return false;
        }
        ::madvise(range, RequestMemory::most_bytes, MADV_NOHUGEPAGE); // else the first tree takes megabytes
        begin_ = static_cast<char*>(range);
        return true;
    }

    /// Null when the block is too large, or no chunk is left.
    void* cut(std::size_t size) {
        const auto wanted = (size + alignment - 1) / alignment * alignment;
        if (wanted > chunk_size - used_ && !find_chunk(wanted)) {
            return nullptr;
        }
        void* const block = begin_ + current_ * chunk_size + used_;
        used_ += wanted;
        ++blocks_[current_];
        return block;
    }

    [[nodiscard]] bool holds(const void* block) const {
        return offset_of(block) < RequestMemory::most_bytes && begin_ != nullptr;
    }

    void free(const void* block) {
        const auto chunk = offset_of(block) / chunk_size;
        if (--blocks_[chunk] > 0) {
            return;
        }
        if (chunk == current_) {
            used_ = 0;
        } else if (chunk < lowest_free_) {
            lowest_free_ = chunk;
        }
    }

    /// Gives back the free chunks beyond the limit.
    void shrink() {
        constexpr auto kept = RequestMemory::kept_bytes / chunk_size;
        for (auto chunk = kept; chunk < end_; ++chunk) {
            if (is_taken_[chunk] && blocks_[chunk] == 0) {
                ::madvise(begin_ + chunk * chunk_size, chunk_size, MADV_DONTNEED);
                is_taken_[chunk] = false;
            }
        }
        while (end_ > kept && !is_taken_[end_ - 1]) {
            --end_;
        }
        if (current_ >= kept && current_ < chunk_count && !is_taken_[current_]) {
            current_ = chunk_count;
            used_ = chunk_size;
        }
    }

    void wipe_unused() {
        for (std::size_t chunk = 0; chunk < end_; ++chunk) {
            if (is_taken_[chunk] && blocks_[chunk] == 0) {
                explicit_bzero(begin_ + chunk * chunk_size, chunk_size);
            }
        }
    }

    [[nodiscard]] std::size_t bytes_taken() const {
        return static_cast<std::size_t>(std::ranges::count(is_taken_, true)) * chunk_size;
    }

private:
    [[nodiscard]] std::uintptr_t offset_of(const void* block) const {
        return reinterpret_cast<std::uintptr_t>(block) - reinterpret_cast<std::uintptr_t>(begin_);
    }

    /// The current chunk, which holds blocks, is full. Goes on in another: the first one without blocks, so that few
    /// are touched.
    bool find_chunk(std::size_t wanted) {
        if (wanted > chunk_size) {
            return false;
        }
        auto chunk = lowest_free_;
        while (chunk < chunk_count && blocks_[chunk] > 0) {
            ++chunk;
        }
        lowest_free_ = chunk;
        if (chunk == chunk_count) {
            return false;
        }
        current_ = chunk;
        used_ = 0;
        is_taken_[chunk] = true;
        end_ = std::max(end_, chunk + 1);
        return true;
    }

    char* begin_ = nullptr;
    std::size_t current_ = chunk_count;               ///< the chunk that blocks are cut from; none at first
    std::size_t used_ = chunk_size;                   ///< bytes of it
    std::size_t lowest_free_ = 0;                     ///< no chunk before it is free, but for the current one
    std::size_t end_ = 0;                             ///< of the chunks that are taken
    std::array<bool, chunk_count> is_taken_{};        ///< memory may stand behind it
    std::array<std::uint32_t, chunk_count> blocks_{}; ///< in use, by chunk
};

// The library's functions are given no context.
constinit Arena arena;                  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)
constinit thread_local int serving = 0; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables): requests, nested

void* allocate(std::size_t size) {
    if (serving > 0) {
        if (void* const block = arena.cut(size)) {
            return block;
        }
    }
    return std::malloc(size); // NOLINT(cppcoreguidelines-no-malloc)
}

void release(void* block) {
    if (arena.holds(block)) {
        arena.free(block);
    } else {
        std::free(block); // NOLINT(cppcoreguidelines-no-malloc)
    }
}

} // namespace

void RequestMemory::use() {
    // Set by hand, the limits do not follow the largest block that was ever freed.
    constexpr int least_mapping = 128 * 1024;
    constexpr int most_kept_in_heap = 512 * 1024;
    ::mallopt(M_MMAP_THRESHOLD, least_mapping);
    ::mallopt(M_TRIM_THRESHOLD, most_kept_in_heap);
    // The threads beside the one that serves requests allocate little: a heap of its own for each would be waste.
    ::mallopt(M_ARENA_MAX, 1);
    if (arena.open()) {
        cJSON_Hooks hooks{.malloc_fn = allocate, .free_fn = release};
        cJSON_InitHooks(&hooks);
    }
}

RequestMemory::Scope::Scope() {
    ++serving;
}

RequestMemory::Scope::~Scope() {
    if (--serving == 0) {
        arena.shrink();
    }
}

void RequestMemory::wipe_unused() {
    arena.wipe_unused();
}

std::size_t RequestMemory::bytes_taken() {
    return arena.bytes_taken();
}

} // namespace xpon::api_service
