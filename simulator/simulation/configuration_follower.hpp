#pragma once

#include "simulator/plant/running_configuration.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/ipc/address.hpp"
#include "xpon/service/config_change.hpp"

#include <cstdint>
#include <span>

namespace xpon::simulator {

/// Keeps what the plant obeys of the running configuration. Reads no more than what changed. Faults of the database
/// are thrown as std::system_error.
class ConfigurationFollower {
public:
    /// Reads all of it.
    ConfigurationFollower();

    [[nodiscard]] const RunningConfiguration& configuration() const {
        return configuration_;
    }

    /// Reads all that is the business of one peer: of the PON state machine, the switch chip or the system manager.
    void reload(ipc::Address peer);

    /// Has the running configuration become what it is after a start of the OLT, and reads all of it.
    void restart();

    /// Reads what a commit changed of it. False when that is nothing.
    bool follow(ipc::Address peer, std::span<const service::Config_change> changes);

private:
    void read_all();
    void read_fans();
    void read_hostname();
    void read_management();
    void read_front_port(std::uint16_t index);
    void read_port_channel(std::uint16_t index);
    void read_pon_port(std::uint16_t index);
    void read_onts(std::span<const std::uint16_t> indices);
    void read_configured_onts();

    cfgdb::CfgDbWrapper database_{"olt_simulator"};
    RunningConfiguration configuration_;
};

} // namespace xpon::simulator
