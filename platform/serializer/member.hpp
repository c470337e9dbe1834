#pragma once

#include <cstddef>
#include <cstdint>

namespace xpon::serializer {

/// Where a record keeps one of its members, and of which type: what a field builder gets.
template <class Type>
struct Member {
    const char* name;
    std::uint32_t offset;
};

} // namespace xpon::serializer

/// The member `member` of the record type `record`. The key of a field is its member's name.
#define XPON_MEMBER(record, member)                                                                                    \
    (xpon::serializer::Member<decltype(record::member)>{#member, static_cast<std::uint32_t>(offsetof(record, member))})
