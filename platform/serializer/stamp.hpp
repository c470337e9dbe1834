#pragma once

#include "serializer/field.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace xpon::serializer {

/// A digest [FNV-1a, 64 bits] that changes with what is added to it, the same in every process.
class Stamp {
public:
    constexpr void add(std::int64_t number) {
        for (unsigned shift = 0; shift < 64; shift += 8) {
            add_byte(static_cast<std::uint8_t>(static_cast<std::uint64_t>(number) >> shift));
        }
    }

    constexpr void add(std::string_view text) {
        for (const char character : text) {
            add_byte(static_cast<std::uint8_t>(character));
        }
        add_byte(0);
    }

    constexpr void add(std::span<const std::byte> bytes) {
        for (const auto byte : bytes) {
            add_byte(std::to_integer<std::uint8_t>(byte));
        }
    }

    /// What a table says about the layout and the limits of a field. Defaults do not count: a stored record holds
    /// every field.
    constexpr void add(const Field& field) {
        add(std::string_view(field.key));
        for (const std::int64_t number :
             {static_cast<std::int64_t>(field.kind), static_cast<std::int64_t>(field.characters),
              static_cast<std::int64_t>(field.may_be_empty), static_cast<std::int64_t>(field.offset),
              static_cast<std::int64_t>(field.size), static_cast<std::int64_t>(field.count_offset), field.min,
              field.max, field.step}) {
            add(number);
        }
        for (const char* name : field.names) {
            add(std::string_view(name));
        }
        if (field.child != nullptr) {
            add(static_cast<std::int64_t>(field.child->stamp));
        }
        if (field.element != nullptr) {
            add(*field.element);
        }
    }

    [[nodiscard]] constexpr std::uint64_t value() const {
        return value_;
    }

private:
    constexpr void add_byte(std::uint8_t byte) {
        value_ = (value_ ^ byte) * 0x100000001B3U;
    }

    std::uint64_t value_ = 0xCBF29CE484222325U;
};

} // namespace xpon::serializer
