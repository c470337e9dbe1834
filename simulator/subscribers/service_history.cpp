#include "simulator/subscribers/service_history.hpp"

namespace xpon::simulator {

ServiceHistory::Form::Form(const ServiceSettings& service)
    : type(service.type), termination(service.termination), uni_vid(service.uni_vid), s_vid(service.s_vid),
      c_vid(service.c_vid), multicast_vid(service.multicast_vid), dhcp_agent(service.dhcp_agent),
      pppoe_agent(service.pppoe_agent), static_ip(service.static_ip) {}

void ServiceHistory::follow(const ConfiguredOnts& onts, PlantTime now) {
    for (std::uint16_t index = 0; index < max_onts; ++index) {
        follow(index, onts.find(index), now);
    }
}

void ServiceHistory::follow(const ConfiguredOnts& onts, const ChangedOnts& changed, PlantTime now) {
    for (const auto index : changed) {
        follow(index, onts.find(index), now);
    }
}

void ServiceHistory::follow(std::uint16_t index, const OntSettings* ont, PlantTime now) {
    if (ont == nullptr) {
        onts_.take(index);
        return;
    }
    auto& known = onts_[index];
    if (known.serial != ont->serial) {
        known = {.serial = ont->serial, .services = {}};
    }
    std::array<std::optional<Form>, max_services> forms;
    for (const auto& service : ont->services) {
        if (service.number >= 1 && service.number <= max_services) {
            forms.at(service.number - 1U).emplace(service);
        }
    }
    for (unsigned nth = 0; nth < max_services; ++nth) {
        auto& [form, since] = known.services.at(nth);
        if (form != forms.at(nth)) {
            form = forms.at(nth);
            since = form ? now : never;
        }
    }
}

PlantTime ServiceHistory::since(std::uint16_t index, unsigned service) const {
    const auto* const ont = onts_.find(index);
    const bool is_known = ont != nullptr && service >= 1 && service <= max_services;
    return is_known ? ont->services.at(service - 1).since : never;
}

} // namespace xpon::simulator
