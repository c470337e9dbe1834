#pragma once

#include "simulator/plant/equipment.hpp"
#include "simulator/plant/fault_kinds.hpp"
#include "simulator/plant/ont_population.hpp"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace xpon::simulator {

/// A fault that a plant has from the start.
struct InitialFault {
    FaultKind kind;
    FaultTarget target;
    double value = 0;
};

/// A front port of the board.
struct FrontPortPlan {
    std::optional<ModuleModel> module; ///< empty: so is the slot
    bool has_partner = false;          ///< something at the other end of the link
};

/// A PON port of the board and the fibres behind it.
struct PonPortPlan {
    std::optional<ModuleModel> module;
    unsigned split = 32; ///< ways of the splitter
    double least_km = 0.3;
    double most_km = 18; ///< the ONTs lie between these
};

/// What is said of a single ONT; the rest follows from the seed, as for all others.
struct OntPlan {
    std::optional<std::size_t> model; ///< its place among the models
    std::optional<std::uint64_t> serial;
    std::optional<double> distance_km;
    std::optional<bool> is_switched_on;
};

/// ONTs by their number on a port, and the factory's template that they are configured with on a fresh OLT.
struct ServicePlan {
    unsigned first_ont = 1;
    unsigned last_ont = max_onts_per_port;
    std::uint8_t ont_template = 1;
};

/// How the users behind the ONTs are.
struct SubscriberPlan {
    unsigned most_hosts = 3;   ///< behind a bridged service
    double silent_hosts = 0.6; ///< share of those that are silent for hours
};

/// All that makes one plant another than the next, besides its seed.
struct PlantDescription {
    std::string name;
    /// How long the OLT has been running when the simulation begins: its ONTs are in service by then.
    PlantTime uptime{};
    BoardModel board;
    std::array<FrontPortPlan, front_ports> front; ///< port 1 first
    std::array<PonPortPlan, pon_ports> pon;       ///< port 1 first
    std::vector<OntModel> ont_models;             ///< at least one
    double offline_share = 0;                     ///< ONTs without power
    std::vector<OntPosition> onts;                ///< in the order in which they are made
    unsigned configured = 0;                      ///< how many of them, the first ones, a fresh OLT has configured
    std::map<OntPosition, OntPlan> single_onts;
    std::vector<ServicePlan> services; ///< the first one that fits an ONT holds
    SubscriberPlan subscribers;
    std::vector<InitialFault> faults;

    [[nodiscard]] PlantSize size() const {
        return {.onts = static_cast<unsigned>(onts.size()), .configured = configured};
    }
    /// Ways of the splitter of a PON port, from 1.
    [[nodiscard]] unsigned split_of(unsigned pon_port) const {
        return pon.at(pon_port - 1).split;
    }
    /// Number of the template of an ONT that is configured from the start.
    [[nodiscard]] std::uint8_t template_of(const OntPosition& ont) const;
};

/// Why nothing can happen to a target: the plant has no such ONT or slot; empty when it has. Says nothing of ONTs that
/// were plugged in later.
std::string complaint_about(const PlantDescription& plant, const FaultTarget& target);

} // namespace xpon::simulator
