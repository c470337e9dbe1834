#pragma once

#include <array>
#include <cstddef>
#include <cstdlib>
#include <string>

#include <malloc.h>
#include <string.h> // explicit_bzero is no part of <cstring>

namespace xpon::api_service {

/// Overwrites a secret text when the scope ends, however it ends.
class WipeAtExit {
public:
    explicit WipeAtExit(std::string& secret) : secret_(secret) {}
    WipeAtExit(const WipeAtExit&) = delete;
    WipeAtExit& operator=(const WipeAtExit&) = delete;
    ~WipeAtExit() {
        explicit_bzero(secret_.data(), secret_.size());
        secret_.clear();
    }

private:
    std::string& secret_;
};

/// Overwrites copies of a secret that somebody else has freed as they were: of blocks of a size, the C library gives
/// those first that were freed last. A copy may lie in a block of the next size, too, when that was what was left.
inline void wipe_freed_copies(std::size_t size) {
    constexpr std::size_t most_copies = 16;
    constexpr std::size_t step_of_sizes = 16;
    std::array<void*, 2 * most_copies> blocks{};
    for (std::size_t nth = 0; nth < blocks.size(); ++nth) {
        auto*& block = blocks.at(nth);
        if ((block = std::malloc(size + nth % 2 * step_of_sizes)) != nullptr) {
            explicit_bzero(block, ::malloc_usable_size(block));
        }
    }
    for (auto* const block : blocks) {
        std::free(block);
    }
}

} // namespace xpon::api_service
