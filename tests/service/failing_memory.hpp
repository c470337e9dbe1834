#pragma once

namespace xpon::test {

/// Which of a program's allocations are meant.
enum class Memory {
    json,   ///< those of the JSON library
    objects ///< those of operator new
};

/// While it lives, the allocation with number `nth` fails, counted from 1, in all threads but the test program's
/// first. One at a time.
class FailingAllocation {
public:
    FailingAllocation(Memory memory, long nth);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    /// Whether it has come to that.
    [[nodiscard]] bool has_failed() const;
};

/// While it lives, the JSON library's memory is counted and may be made to fail.
class CountedJsonMemory {
public:
    CountedJsonMemory();
    CountedJsonMemory(const CountedJsonMemory&) = delete;
    CountedJsonMemory& operator=(const CountedJsonMemory&) = delete;
    ~CountedJsonMemory();

    [[nodiscard]] static long blocks_in_use();
};

} // namespace xpon::test
