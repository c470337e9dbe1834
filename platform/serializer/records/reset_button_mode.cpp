#include "serializer/field_builders.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::GResetButtonMode;

constexpr const char* mode_names[] = {"disabled", "reboot", "factory_default"};

constexpr Field fields[] = {
    enumeration(XPON_MEMBER(GResetButtonMode, mode), mode_names, GResetButtonMode::Mode::factory_default),
    number(XPON_MEMBER(GResetButtonMode, hold_time_s), 1, 60, 10),
};

constexpr Table table = make_table<GResetButtonMode>("GResetButtonMode", fields);

} // namespace

template <>
const Table& record_table<GResetButtonMode>() {
    return table;
}

} // namespace xpon::serializer
