#pragma once

#include "simulator/plant/ont_layout.hpp"
#include "simulator/sim_command/control_client.hpp"
#include "tests/support/process.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/ipc/ipc.hpp"

#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::simulator {

struct FreeBlock {
    void operator()(void* block) const {
        std::free(block);
    }
};
/// What the custom layer's calls give through a pointer.
template <class Record>
using Block = std::unique_ptr<Record, FreeBlock>;

/// A real simulator with a stepped clock, the custom layer connected to it as the daemon is, and its control socket.
class LiveOltTest : public testing::Test {
protected:
    explicit LiveOltTest(const std::vector<std::string>& options = {"--onts", "64", "--configured", "48"});

    [[nodiscard]] Ipc* ipc() const {
        return endpoint->raw();
    }
    /// The simulator's answer to a command line of olt_sim.
    [[nodiscard]] std::string command(const std::vector<std::string>& words) const;
    /// A command line that succeeds.
    void must(const std::vector<std::string>& words) const;

    /// State texts by configured (port, ONT).
    [[nodiscard]] std::map<OntPosition, std::string> ont_states() const;
    [[nodiscard]] std::size_t unactivated(const char* ports = "1-16") const;
    /// The state text of a PON port; "" and errno when nobody answers.
    [[nodiscard]] std::string channel(unsigned port) const;
    /// 0: the call succeeded.
    [[nodiscard]] int errno_of_environment() const;

    template <class Record, class Get, class Set>
    void edit(Get get, Set set, unsigned short index, const std::function<void(Record&)>& change) {
        Record record;
        ASSERT_EQ(get(database->handle(), database->context(), &record, &index), 0);
        change(record);
        ASSERT_EQ(set(database->handle(), database->context(), &record, &index), 0);
    }
    void edit_ont(const OntPosition& ont, const std::function<void(cfgdb::PonOnt&)>& change) {
        edit<cfgdb::PonOnt>(getDb_ZebGCfg_pon_ont, setDb_ZebGCfg_pon_ont, record_index_of(ont), change);
    }
    void commit();

    test::TemporaryOltRoot root;
    std::unique_ptr<test::Process> simulator;
    std::shared_ptr<ipc::IIpc> endpoint;
    std::unique_ptr<ControlClient> control;
    /// Opened after the simulator, which configures only an OLT that nobody has opened.
    std::unique_ptr<cfgdb::CfgDbWrapper> database;
};

/// An ONT that is there and not configured at first, with power; one that is configured and in service.
inline constexpr OntPosition fresh{.port = 1, .ont = 4};
inline constexpr OntPosition served{.port = 1, .ont = 1};

} // namespace xpon::simulator
