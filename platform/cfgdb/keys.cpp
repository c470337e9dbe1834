#include "cfgdb/keys.hpp"

#include <algorithm>

namespace xpon::cfgdb {

Key& Key::add(std::string_view text) {
    const auto length = std::min(text.size(), bytes_.size() - size_);
    std::memcpy(bytes_.data() + size_, text.data(), length);
    size_ = static_cast<std::uint8_t>(size_ + length);
    return *this;
}

Key record_key(Store store, const RecordId& id) {
    return Key(store).add(static_cast<std::uint16_t>(id.element)).add(id.indices[0]).add(id.indices[1]);
}

std::optional<RecordId> record_of(Bytes key) {
    constexpr std::size_t key_size = 1 + 3 * sizeof(std::uint16_t);
    if (key.size() != key_size) {
        return {};
    }
    KeyReader reader(key.subspan(1));
    const auto number = reader.take<std::uint16_t>();
    if (number >= all_elements().size()) {
        return {};
    }
    const auto first = reader.take<std::uint16_t>();
    const auto second = reader.take<std::uint16_t>();
    return RecordId{static_cast<ElementId>(number), {first, second}};
}

} // namespace xpon::cfgdb
