#include "simulator/plant/ont_layout.hpp"

#include <array>
#include <set>

#include <gtest/gtest.h>

namespace xpon::simulator {
namespace {

TEST(OntLayoutTest, SpreadsAnyNumberEvenlyAndUsesEveryPlaceOnce) {
    std::array<unsigned, pon_ports + 1> onts_of_port{};
    std::set<std::uint64_t> serials;
    std::set<unsigned short> records;
    for (unsigned nth = 0; nth < max_onts; ++nth) {
        const auto position = position_of(nth);
        ASSERT_TRUE(position.port >= 1 && position.port <= pon_ports) << nth;
        // ONTs of a port are numbered without a gap, and no port is two ahead of another.
        EXPECT_EQ(position.ont, ++onts_of_port.at(position.port));
        EXPECT_EQ(position.ont, nth / pon_ports + 1);
        serials.insert(serial_of(position));
        records.insert(record_index_of(position));
        EXPECT_EQ(place_of_record(record_index_of(position)), position);
    }
    EXPECT_EQ(serials.size(), max_onts);
    EXPECT_EQ(records.size(), max_onts);
    EXPECT_EQ(*records.rbegin(), max_onts - 1);
}

} // namespace
} // namespace xpon::simulator
