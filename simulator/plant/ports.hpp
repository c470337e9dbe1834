#pragma once

#include "simulator/plant/equipment.hpp"
#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/running_configuration.hpp"
#include "xpon/custom_layer/pon_ports.h"

#include <array>

namespace xpon::simulator {

struct Circumstances;

/// How a port comes to run.
struct PortRun {
    bool has_module = false;
    bool is_enabled = false;
    PlantTime module_since{};
    PlantTime up_since{}; ///< once enabled and with a module: when it works
    bool has_rogue = false;
    PlantTime rogue_since{};
};

/// The ports of the OLT and the modules in them. Numbers of ports count from 1; `given` is what the plant is given.
class Ports {
public:
    /// Something happened. `before`: the settings of the PON ports until now.
    void follow(const Circumstances& given, const std::array<PonPortSettings, pon_ports>& before);
    /// The OLT has begun to boot: all of them start when it is through.
    void boot(const Circumstances& given);
    void restart_pon(const Circumstances& given, unsigned port);

    [[nodiscard]] const PortRun& pon(unsigned port) const {
        return pon_.at(port - 1);
    }
    [[nodiscard]] const PortRun& front(unsigned port) const {
        return front_.at(port - 1);
    }
    [[nodiscard]] Pon_channel_state channel_state(const Circumstances& given, unsigned pon_port) const;
    /// When the link comes up, or came; `never` as long as nothing happens to it.
    [[nodiscard]] PlantTime front_link_since(const Circumstances& given, unsigned front_port) const;

    /// The module in a port; null when the slot is empty.
    /// @{
    static const ModuleModel* pon_module(const Circumstances& given, unsigned port);
    static const ModuleModel* front_module(const Circumstances& given, unsigned port);
    /// @}
    /// What light the module of a PON port makes do with; that of an usual one when the slot is empty.
    static OdnClass odn_class(const Circumstances& given, unsigned pon_port);

    template <class Archive>
    void archive(Archive& state) {
        state(pon_, front_);
    }

private:
    std::array<PortRun, pon_ports> pon_{};
    std::array<PortRun, front_ports> front_{};
};

} // namespace xpon::simulator
