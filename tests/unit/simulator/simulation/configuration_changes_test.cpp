#include "simulator/simulation/configuration_follower.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/simulator/reports/everything.hpp"
#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/peer_side/fixed_text.hpp"

#include <array>
#include <random>
#include <utility>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

/// The configuration changes, faults come and go, time passes; two plants live through it. One is told what changed,
/// the other each time all that is in the database.
class ConfigurationChanges : public testing::Test {
protected:
    static constexpr unsigned physical = 96; ///< six on each PON port
    static constexpr std::uint16_t crowded = 2 * max_onts_per_port;

    ConfigurationChanges() {
        // One port has so many that the ONU-IDs are just enough.
        change<cfgdb::PonPort>(getDb_ZebGCfg_pon_port_state, setDb_ZebGCfg_pon_port_state, 2,
                               [](auto& port) { port.ont_limit = max_onts_per_port; });
        for (unsigned nth = 0; nth < max_onts_per_port - 2; ++nth) {
            set_serial(static_cast<std::uint16_t>(crowded + nth), 0x5445535400000000 + nth);
        }
        for (unsigned nth = 0; nth < physical; ++nth) {
            const auto ont = make_ont(plant, nth);
            set_serial(record_index_of(ont.position), ont.serial);
        }
        EXPECT_TRUE(database.commit(nullptr));
    }

    [[nodiscard]] unsigned below(unsigned count) {
        return static_cast<unsigned>(random() % count);
    }
    [[nodiscard]] bool is_heads() {
        return below(2) == 0;
    }

    template <class Record, class Get, class Set, class Edit>
    void change(Get get, Set set, std::uint16_t index, Edit edit) {
        Record record;
        ASSERT_EQ(get(database.handle(), database.context(), &record, &index), 0);
        edit(record);
        ASSERT_EQ(set(database.handle(), database.context(), &record, &index), 0);
    }
    template <class Edit>
    void change_ont(std::uint16_t index, Edit edit) {
        change<cfgdb::PonOnt>(getDb_ZebGCfg_pon_ont, setDb_ZebGCfg_pon_ont, index, edit);
    }
    void set_serial(std::uint16_t index, std::uint64_t serial) {
        change_ont(index, [&](cfgdb::PonOnt& ont) {
            ont.serial = serial;
            ont.enabled = 1;
            ont.ont_template = index / max_onts_per_port == crowded / max_onts_per_port ? 1 : 2; // guarantees less
        });
    }
    /// A place of the crowded port, or one that may have an ONT.
    std::uint16_t any_place() {
        return static_cast<std::uint16_t>(is_heads() ? crowded + max_onts_per_port - 1 - below(8)
                                                     : record_index_of(make_ont(plant, below(physical)).position));
    }

    void exchange_serials() {
        const auto one = any_place();
        const auto other = any_place();
        std::uint64_t serial = 0;
        change_ont(one, [&](auto& ont) { serial = ont.serial; });
        change_ont(other, [&](auto& ont) { std::swap(ont.serial, serial); });
        change_ont(one, [&](auto& ont) { ont.serial = serial; });
    }
    void change_an_ont() {
        change_ont(any_place(), [&](cfgdb::PonOnt& ont) {
            switch (below(5)) {
            case 0:
                ont.serial = 0;
                break;
            case 1:
                ont.serial = make_ont(plant, below(physical)).serial;
                break;
            case 2:
                put_text(ont.password, std::string_view("PW01001"));
                break;
            case 3:
                ont.ont_template = static_cast<std::uint8_t>(1 + below(2));
                break;
            default:
                ont.enabled = is_heads();
            }
        });
    }
    void change_a_service() {
        const std::uint16_t indices[]{any_place(), static_cast<std::uint16_t>(below(2))};
        cfgdb::OntServices service;
        ASSERT_EQ(getDb_ZebGCfg_pon_ont_ont_common_service(database.handle(), database.context(), &service, indices),
                  0);
        service.mode = is_heads() ? cfgdb::OntServices::from_template : cfgdb::OntServices::off;
        service.downstream_kbps = 1000 * below(3);
        ASSERT_EQ(setDb_ZebGCfg_pon_ont_ont_common_service(database.handle(), database.context(), &service, indices),
                  0);
    }
    void change_a_profile() {
        change<cfgdb::ProfileOntDba>(getDb_CommonGCfg_profiles_profiles_ont_dba,
                                     setDb_CommonGCfg_profiles_profiles_ont_dba, static_cast<std::uint16_t>(below(3)),
                                     [&](auto& dba) { dba.maximum_kbps = 1000000 + 64 * below(4); });
    }
    void change_a_pon_port() {
        change<cfgdb::PonPort>(getDb_ZebGCfg_pon_port_state, setDb_ZebGCfg_pon_port_state,
                               static_cast<std::uint16_t>(below(4)), [&](cfgdb::PonPort& port) {
                                   port.enabled = below(4) != 0;
                                   port.discovery_interval_s = static_cast<std::uint8_t>(8 + below(3));
                                   port.downstream_fec = is_heads();
                                   port.odn_class =
                                       is_heads() ? cfgdb::PonPort::OdnClass::a : cfgdb::PonPort::OdnClass::b_plus;
                               });
    }
    void change_a_front_port() {
        change<cfgdb::FrontPort>(getDb_ZebGCfg_switch_config_front_port, setDb_ZebGCfg_switch_config_front_port,
                                 static_cast<std::uint16_t>(below(4)), [&](auto& port) { port.enabled = is_heads(); });
    }

    void change_something() {
        static constexpr std::array changes{
            &ConfigurationChanges::exchange_serials,  &ConfigurationChanges::change_an_ont,
            &ConfigurationChanges::change_a_service,  &ConfigurationChanges::change_a_profile,
            &ConfigurationChanges::change_a_pon_port, &ConfigurationChanges::change_a_front_port,
        };
        (this->*changes.at(below(changes.size())))();
    }

    void commit() {
        // What a check refuses is no commit.
        if (!database.commit(nullptr)) {
            ASSERT_TRUE(database.rollback());
        }
    }

    void set_or_clear_a_fault(AccessNetwork& told, AccessNetwork& whole) {
        static constexpr std::array kinds{"ont_los", "ont_moved", "ont_dying_gasp", "ont_omci"};
        const auto position = make_ont(plant, below(physical)).position;
        const auto chosen =
            fault(kinds.at(below(kinds.size())), fmt::format("{}/{}", position.port, position.ont).c_str(), 3);
        const bool sets = below(3) != 0;
        for (auto* network : {&told, &whole}) {
            if (sets) {
                network->happen(&Plant::set_fault, chosen);
            } else {
                network->happen(&Plant::clear_fault, chosen.kind, chosen.target);
            }
        }
    }

    const PlantParameters plant = parameters(physical);
    test::TemporaryOltRoot root;
    cfgdb::CfgDbWrapper database{"test"};
    std::mt19937 random{1};
};

TEST_F(ConfigurationChanges, ReachThePlantAsTheWholeConfigurationDoes) {
    ConfigurationFollower follower;
    AccessNetwork told(plant, follower.configuration());
    AccessNetwork whole(plant, follower.configuration());
    auto now = PlantTime{5min};
    unsigned followed_commits = 0;
    for (int round = 0; round < 400; ++round) {
        now += std::chrono::milliseconds(below(20000));
        told.advance(now);
        whole.advance(now);
        for (unsigned count = 1 + below(2); count > 0; --count) {
            change_something();
        }
        commit();
        const auto number = follower.running_number();
        for (const auto& [peer, name] : peer_side::peer_names) {
            if (const auto followed = follower.follow(peer, number); followed && followed->concerns_plant) {
                told.change_configuration(follower.configuration(), followed->onts);
                followed_commits += followed->onts.empty() ? 0 : 1;
            }
        }
        const ConfigurationFollower reader;
        ASSERT_EQ(follower.configuration(), reader.configuration());
        whole.happen(&Plant::configure, reader.configuration());
        if (below(4) == 0) {
            set_or_clear_a_fault(told, whole);
        }
        ASSERT_EQ(everything(told), everything(whole)) << "round " << round;
    }
    EXPECT_GT(followed_commits, 100U);
}

} // namespace
} // namespace xpon::simulator
