#include "tests/service/failing_memory.hpp"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#include <cjson/cJSON.h>
#include <pthread.h>

namespace xpon::test {
namespace {

std::array<std::atomic<long>, 2> until_failure; // per Memory; 0 = none fails
std::atomic<bool> failed{false};
std::atomic<long> json_blocks{0};
const pthread_t test_thread = pthread_self();

bool fails(Memory memory) {
    auto& left = until_failure[static_cast<std::size_t>(memory)];
    if (left == 0 || pthread_equal(pthread_self(), test_thread) != 0 || --left != 0) {
        return false;
    }
    failed = true;
    return true;
}

void* allocate_json(std::size_t size) {
    if (fails(Memory::json)) {
        return nullptr;
    }
    ++json_blocks;
    return std::malloc(size);
}

void release_json(void* block) {
    json_blocks -= block == nullptr ? 0 : 1;
    std::free(block);
}

} // namespace

FailingAllocation::FailingAllocation(Memory memory, long nth) {
    failed = false;
    until_failure[static_cast<std::size_t>(memory)] = nth;
}

FailingAllocation::~FailingAllocation() {
    for (auto& left : until_failure) {
        left = 0;
    }
}

bool FailingAllocation::has_failed() const {
    return failed;
}

CountedJsonMemory::CountedJsonMemory() {
    cJSON_Hooks hooks{.malloc_fn = allocate_json, .free_fn = release_json};
    cJSON_InitHooks(&hooks);
}

CountedJsonMemory::~CountedJsonMemory() {
    cJSON_InitHooks(nullptr);
}

long CountedJsonMemory::blocks_in_use() {
    return json_blocks;
}

} // namespace xpon::test

// The other forms of the operators use these.

void* operator new(std::size_t size) {
    void* const block = xpon::test::fails(xpon::test::Memory::objects) ? nullptr : std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
