#include "gateway/freed_memory.hpp"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

#include <cjson/cJSON.h>
#include <malloc.h>

namespace {

void free_overwritten(void* memory) {
    if (memory != nullptr) {
        explicit_bzero(memory, malloc_usable_size(memory));
        std::free(memory);
    }
}

} // namespace

namespace xpon::gateway {

void overwrite_freed_trees() {
    cJSON_Hooks hooks{.malloc_fn = std::malloc, .free_fn = free_overwritten};
    cJSON_InitHooks(&hooks);
}

} // namespace xpon::gateway

// The arrays' and nothrow forms of the standard library call these. [C++20, new.delete]
void* operator new(std::size_t size) {
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    free_overwritten(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    free_overwritten(memory);
}
