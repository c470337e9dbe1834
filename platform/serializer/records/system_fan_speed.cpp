#include "serializer/field_builders.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::GSystemFanSpeed;

constexpr const char* mode_names[] = {"auto", "manual"};

constexpr Field fields[] = {
    enumeration(XPON_MEMBER(GSystemFanSpeed, mode), mode_names, GSystemFanSpeed::Mode::automatic),
    number(XPON_MEMBER(GSystemFanSpeed, manual_percent), 20, 100, 60),
    number(XPON_MEMBER(GSystemFanSpeed, min_percent), 20, 100, 30),
    number(XPON_MEMBER(GSystemFanSpeed, target_temp_c), 30, 80, 55),
    number(XPON_MEMBER(GSystemFanSpeed, alarm_temp_c), 50, 100, 75),
};

constexpr Table table = make_table<GSystemFanSpeed>("GSystemFanSpeed", fields);

} // namespace

template <>
const Table& record_table<GSystemFanSpeed>() {
    return table;
}

} // namespace xpon::serializer
