#pragma once

#include "simulator/plant/running_configuration.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/ipc/address.hpp"
#include "xpon/peer_side/operations.hpp"
#include "xpon/peer_side/running_commits.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <span>

namespace xpon::simulator {

/// Keeps what the plant obeys of the running configuration. Reads no more than what changed. Each of three daemons has
/// its part, and follows commits while it runs: the system manager, the switch chip and the PON state machine. Faults
/// of the database are thrown as std::system_error; what could not be read is tried again the next time.
class ConfigurationFollower {
public:
    /// Reads all of it.
    ConfigurationFollower();

    [[nodiscard]] const RunningConfiguration& configuration() const {
        return configuration_;
    }

    /// The number of the last commit.
    [[nodiscard]] std::uint64_t running_number() const;

    /// What a daemon had missed.
    struct Followed {
        cfgdb::RunningCommits commits;
        bool concerns_plant; ///< a part that the plant obeys was read anew
        ChangedOnts onts;    ///< whose settings were
    };
    /// Has one daemon follow the commits up to the one with this number at least. Empty when it had missed none, and
    /// for a daemon without a part.
    std::optional<Followed> follow(ipc::Address peer, std::uint64_t number);

    /// Has the running configuration become what it is after a start of the OLT, and reads all of it.
    void restart();

private:
    void read_all();
    void read_all_of(ipc::Address peer);
    static ChangedOnts onts_of(ipc::Address peer, const cfgdb::RunningCommits& since);
    bool read_changed(ipc::Address peer, const cfgdb::RunningCommit& commit);
    void read_fans();
    void read_hostname();
    void read_management();
    void read_front_port(std::uint16_t index);
    void read_port_channel(std::uint16_t index);
    void read_pon_port(std::uint16_t index);
    void read_onts(std::span<const std::uint16_t> indices);

    cfgdb::CfgDbWrapper database_{"olt_simulator"};
    RunningConfiguration configuration_;
    /// The last commit that each daemon has followed.
    std::map<ipc::Address, std::uint64_t> followed_{{peer_side::peers::system_manager, 0},
                                                    {peer_side::peers::switch_chip, 0},
                                                    {peer_side::peers::pon_state_machine, 0}};
};

} // namespace xpon::simulator
