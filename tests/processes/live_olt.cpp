#include "tests/processes/live_olt.hpp"

#include "simulator/peers/peer_table.hpp"
#include "simulator/sim_command/command_line.hpp"

#include <cerrno>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

constexpr ipc::Address daemon_address{0x1bffff};

} // namespace

LiveOltTest::LiveOltTest(const std::vector<std::string>& options) {
    std::vector<std::string> command{OLT_SIMULATOR, "--clock-rate", "0"};
    command.insert(command.end(), options.begin(), options.end());
    simulator = std::make_unique<test::Process>(command, test::Environment{});
    EXPECT_TRUE(simulator->wait_for_line("olt_simulator is ready"));
    endpoint = ipc::make_zmq_ipc(daemon_address, "none").value();
    for (const auto& peer : peer_table) {
        EXPECT_TRUE(endpoint->connect(peer.address)) << peer.name();
    }
    control = std::make_unique<ControlClient>();
    database = std::make_unique<cfgdb::CfgDbWrapper>("test");
}

std::string LiveOltTest::command(const std::vector<std::string>& words) const {
    return control->ask(command_of(words));
}

void LiveOltTest::must(const std::vector<std::string>& words) const {
    ASSERT_THAT(command(words), testing::HasSubstr(R"("ok":true)"));
}

std::map<OntPosition, std::string> LiveOltTest::ont_states() const {
    Bitmap_ont_range range;
    prepare_bitmap_ont(&range);
    bitfield_invert(range.bits, range.size);
    Ont__get_state_info_response* response = nullptr;
    EXPECT_EQ(custom_layer__get_ont_state_info_by_range(ipc(), &range, &response), 0);
    const Block<Ont__get_state_info_response> owner(response);
    std::map<OntPosition, std::string> states;
    for (std::uint32_t nth = 0; response != nullptr && nth < response->count; ++nth) {
        const auto& ont = response->entries[nth];
        states[{.port = ont.port, .ont = ont.ont_id}] = ont_state_to_str(ont.state);
    }
    return states;
}

std::size_t LiveOltTest::unactivated(const char* ports) const {
    Bitmap_pon_port_range range;
    EXPECT_EQ(get_parsed_pon_port_range(ports, &range), 0);
    Ont_unactivated_info* info = nullptr;
    EXPECT_EQ(custom_layer__get_ont_unactivated_by_range(ipc(), &range, &info), 0);
    const Block<Ont_unactivated_info> owner(info);
    return info == nullptr ? 0 : info->count;
}

std::string LiveOltTest::channel(unsigned port) const {
    Pon_ports_states* states = nullptr;
    const int status = custom_layer__get_pon_ports_states(ipc(), &states);
    const Block<Pon_ports_states> owner(states);
    return status == 0 ? channel_state_to_str(states->ports[port - 1].channel_state) : "";
}

int LiveOltTest::errno_of_environment() const {
    System_environment_data data;
    errno = 0;
    return custom_layer__get_system_environment_info(ipc(), &data) == 0 ? 0 : errno;
}

void LiveOltTest::commit() {
    const auto committed = database->commit(endpoint);
    ASSERT_TRUE(committed) << committed.error().to_string();
}

} // namespace xpon::simulator
