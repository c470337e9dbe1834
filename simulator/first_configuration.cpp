#include "simulator/first_configuration.hpp"

#include "simulator/plant/plant_description.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/fixed_text.hpp"

#include <cerrno>
#include <system_error>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

core::Result<void> configure(const cfgdb::CfgDbWrapper& database, const PhysicalOnt& hardware,
                             std::uint8_t ont_template) {
    const auto& position = hardware.position;
    const auto index = record_index_of(position);
    const auto description = description_of(position);
    cfgdb::PonOnt ont;
    if (getDb_ZebGCfg_pon_ont(database.handle(), database.context(), &ont, &index) == 0) {
        ont.serial = hardware.serial;
        ont.enabled = 1;
        ont.ont_template = ont_template;
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
        const auto ont = make_ont(parameters, nth);
        BOOST_OUTCOME_TRY(configure(database, ont, parameters.plant->template_of(ont.position)));
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
