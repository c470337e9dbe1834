#pragma once

#include <cstddef>

namespace xpon::api_service {

/// Where JSON trees live.
///
/// A tree is made for a request and dies with it, so its thousands of small blocks are cut one behind the other from a
/// few large ones, the arena's chunks, and cost next to nothing to make and to free. Who owns what:
///
/// - A tree belongs to its JsonTree (or to the library that made it) wherever its blocks lie. Nothing ever frees blocks
///   behind their owner's back: a chunk counts its blocks and is used again once the last of them has been freed. A
///   tree that outlives its request keeps its chunks, it never dangles.
/// - Between requests nothing is cut from the arena: trees that are made then, such as those of a start, lie in the
///   heap like everything else. So do the trees of other threads, and blocks too large for a chunk.
/// - Chunks are taken from the system one by one. What a request leaves of them beyond `kept_bytes` is given back at
///   its end; one that needs more than `most_bytes` gets the rest from the heap.
/// - A tree of the arena is to be freed by the thread that serves requests: the counts are its own.
/// - Texts, records and frames are no business of the arena: they are strings, vectors and blocks of the heap. Large
///   ones are mappings of their own, which go back to the system when they are freed. The text of an answer is kept
///   for the next one, up to a limit.
///
/// Programs that look for leaks and overruns leave the arena out.
class RequestMemory {
public:
    static constexpr std::size_t kept_bytes = 256UL * 1024;
    static constexpr std::size_t most_bytes = 64UL * 1024 * 1024;

    /// Has the JSON library take its memory from here for the rest of the program's life. To be called before the
    /// first tree is made.
    static void use();

    /// A request is being served: trees of this thread are made in the arena. No effect without use().
    class Scope {
    public:
        Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope();
    };

    /// Overwrites what is in no use. The library frees the tree of a text that turns out to be no JSON as it is, and
    /// there may be a password in it.
    static void wipe_unused();

    /// Bytes of the arena that are taken from the system, blocks in use or not.
    static std::size_t bytes_taken();
};

} // namespace xpon::api_service
