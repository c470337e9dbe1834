#include "simulator/first_configuration.hpp"

#include "simulator/plant/ont_layout.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/fixed_text.hpp"

#include <cerrno>
#include <system_error>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

/// The factory's template for ONTs with data, voice and television. Its guaranteed rates let no more than 56 of them
/// share the upstream of a PON port, so the ONTs behind the first 32 of a port get plain data.
std::uint8_t template_of(const OntPosition& position) {
    constexpr unsigned most_triple_play_onts = 32;
    constexpr std::uint8_t bridged = 1;
    constexpr std::uint8_t triple_play = 2;
    return position.ont <= most_triple_play_onts ? triple_play : bridged;
}

core::Result<void> configure(const cfgdb::CfgDbWrapper& database, const PhysicalOnt& hardware) {
    const auto& position = hardware.position;
    const auto index = record_index_of(position);
    const auto description = description_of(position);
    cfgdb::PonOnt ont;
    if (getDb_ZebGCfg_pon_ont(database.handle(), database.context(), &ont, &index) == 0) {
        ont.serial = hardware.serial;
        ont.enabled = 1;
        ont.ont_template = template_of(position);
        put_text(ont.description, description);
        if (setDb_ZebGCfg_pon_ont(database.handle(), database.context(), &ont, &index) == 0) {
            return core::success();
        }
    }
    return core::ErrorPayload(core::Error::ErrorCApi, fmt::format("{} cannot be configured: {}", description,
                                                                  std::generic_category().message(errno)));
}

core::Result<void> configure_all(cfgdb::CfgDbWrapper& database, const PlantParameters& parameters) {
    for (unsigned nth = 0; nth < parameters.size.configured; ++nth) {
        BOOST_OUTCOME_TRY(configure(database, make_ont(parameters, nth)));
    }
    return database.commit(nullptr);
}

} // namespace

core::Result<void> configure_fresh_olt(const PlantParameters& parameters) {
    if (parameters.size.configured == 0 || cfgdb::configuration_exists()) {
        return core::success();
    }
    cfgdb::CfgDbWrapper database("olt_simulator");
    auto result = configure_all(database, parameters);
    if (!result) {
        std::ignore = database.rollback();
    }
    return result;
}

} // namespace xpon::simulator
