#pragma once

#include <cstddef>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace xpon::simulator {

// What a plant remembers, as bytes that the same program reads again. Whoever has a state of its own names its members
// once, in `template <class Archive> void archive(Archive& state) { state(first_, second_); }`; StateWriter takes them,
// StateReader puts them back. Values without pointers are taken as they lie in memory.

template <class Value, class Archive>
concept Archived = requires(Value& value, Archive& archive) { value.archive(archive); };

template <class Value>
constexpr bool is_plain = std::is_trivially_copyable_v<Value>;
template <class First, class Second>
constexpr bool is_plain<std::pair<First, Second>> = false;

class StateWriter {
public:
    static constexpr bool reads = false;

    template <class... Values>
    void operator()(const Values&... values) {
        (write(values), ...);
    }
    [[nodiscard]] std::string take() {
        return std::move(bytes_);
    }

private:
    template <class Value>
    void write(const Value& value) {
        if constexpr (Archived<Value, StateWriter>) {
            const_cast<Value&>(value).archive(*this); // reads its members only
        } else {
            static_assert(is_plain<Value> && !std::is_pointer_v<Value>);
            bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
        }
    }
    void write(const std::string& text) {
        write(text.size());
        bytes_ += text;
    }
    template <class First, class Second>
    void write(const std::pair<First, Second>& pair) {
        (*this)(pair.first, pair.second);
    }
    template <class Value>
    void write(const std::vector<Value>& values) {
        write_all(values);
    }
    template <class Key, class Value>
    void write(const std::map<Key, Value>& values) {
        write_all(values);
    }
    template <class Key, class Value>
    void write(const std::multimap<Key, Value>& values) {
        write_all(values);
    }
    template <class Values>
    void write_all(const Values& values) {
        write(values.size());
        for (const auto& value : values) {
            write(value);
        }
    }

    std::string bytes_;
};

/// Throws std::runtime_error for bytes that end too early.
class StateReader {
public:
    static constexpr bool reads = true;

    explicit StateReader(std::string_view bytes) : rest_(bytes) {}

    template <class... Values>
    void operator()(Values&... values) {
        (read(values), ...);
    }

private:
    std::string_view next(std::size_t size) {
        if (size > rest_.size()) {
            throw std::runtime_error("the kept state ends too early");
        }
        const auto bytes = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return bytes;
    }
    template <class Value>
    void read(Value& value) {
        if constexpr (Archived<Value, StateReader>) {
            value.archive(*this);
        } else {
            static_assert(is_plain<Value> && !std::is_pointer_v<Value>);
            std::memcpy(static_cast<void*>(&value), next(sizeof value).data(), sizeof value);
        }
    }
    void read(std::string& text) {
        text = next(read_size());
    }
    template <class First, class Second>
    void read(std::pair<First, Second>& pair) {
        (*this)(pair.first, pair.second);
    }
    template <class Value>
    void read(std::vector<Value>& values) {
        values.clear();
        for (auto left = read_size(); left > 0; --left) {
            read(values.emplace_back());
        }
    }
    template <class Key, class Value>
    void read(std::map<Key, Value>& values) {
        read_map(values);
    }
    template <class Key, class Value>
    void read(std::multimap<Key, Value>& values) {
        read_map(values);
    }
    template <class Map>
    void read_map(Map& values) {
        values.clear();
        for (auto left = read_size(); left > 0; --left) {
            std::pair<typename Map::key_type, typename Map::mapped_type> entry;
            read(entry);
            values.emplace_hint(values.end(), std::move(entry));
        }
    }
    std::size_t read_size() {
        std::size_t size = 0;
        read(size);
        return size;
    }

    std::string_view rest_;
};

} // namespace xpon::simulator
