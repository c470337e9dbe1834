#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>

namespace xpon::custom_layer {

struct FreeBlock {
    void operator()(void* block) const {
        std::free(block);
    }
};

/// The owner of a malloc block that a C caller will free.
template <class Content>
using CBlock = std::unique_ptr<Content, FreeBlock>;

/// A block of zeros: a Content and `more` bytes behind it. Throws std::bad_alloc.
template <class Content>
CBlock<Content> make_block(std::size_t more = 0) {
    static_assert(std::is_trivially_copyable_v<Content>);
    CBlock<Content> block(static_cast<Content*>(std::calloc(1, sizeof(Content) + more)));
    if (!block) {
        throw std::bad_alloc();
    }
    return block;
}

} // namespace xpon::custom_layer
