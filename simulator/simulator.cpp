#include "simulator/simulator.hpp"

#include "simulator/control/control_commands.hpp"
#include "simulator/control/control_socket.hpp"
#include "simulator/files/device_files.hpp"
#include "simulator/first_configuration.hpp"
#include "simulator/host_name.hpp"
#include "simulator/peers/peers.hpp"
#include "simulator/plant/ont_layout.hpp"
#include "simulator/simulation/simulation.hpp"
#include "simulator/single_instance.hpp"
#include "simulator/stop_signals.hpp"
#include "xpon/peer_side/database_log.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <chrono>
#include <filesystem>
#include <optional>
#include <span>
#include <tuple>

namespace xpon::simulator {
namespace {

/// A signal that comes just before the wait for requests is seen after it: how long a stop may take.
constexpr std::chrono::milliseconds longest_wait{50};

void make_folders() {
    for (const auto* folder : {"/run", "/var/log", "/configuration", "/firmware"}) {
        std::filesystem::create_directories(below_olt_root(folder));
    }
}

} // namespace

core::Result<void> run(const Options& options, const std::shared_ptr<core::ILogger>& logger,
                       const std::function<void()>& ready) {
    make_folders();
    const SingleInstance instance;
    cfgdb::set_database_log(logger);
    BOOST_OUTCOME_TRY(configure_fresh_olt(options.parameters()));
    const BoardFile board(pon_ports, front_ports);
    HostName host_name(options.applies_hostname);
    Simulation simulation(options);
    Peers peers(simulation);
    BOOST_OUTCOME_TRY(const auto server, ipc::make_zmq_server(logger));
    BOOST_OUTCOME_TRY(peers.update(*server));
    simulation.set_scheduled_runner([&](const std::string& command) {
        std::optional<EventFilter> nobody;
        // A refusal, such as that of a fault to clear that is no more, has nobody left to be told to.
        std::ignore = run_command(simulation, command, nobody);
    });
    ControlSocket control([&](std::string_view line, auto& watch) { return run_command(simulation, line, watch); });
    simulation.on_events([&](std::span<const Event> events) { control.publish(events); });
    host_name.follow(simulation.plant().configuration().hostname);
    ready();
    while (!stop_requested()) {
        BOOST_OUTCOME_TRY(server->serve(longest_wait, control.awaited()));
        control.serve();
        simulation.advance();
        simulation.work();
        BOOST_OUTCOME_TRY(peers.update(*server));
        host_name.follow(simulation.plant().configuration().hostname);
    }
    return core::success();
}

} // namespace xpon::simulator
