#include "client/oltctl/provisioning/provisioner.hpp"

#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/table.hpp"
#include "xpon/client/serial_number.hpp"

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

constexpr auto ont_path = "configuration.ZebGCfg.pon.ont";
constexpr auto template_path = "configuration.CommonGCfg.profiles.profiles_ont.ont_template";

std::string serial_of(const cJSON* ont) {
    return client::serial_text(value_at(ont, "serial"));
}

} // namespace

Provisioner::Provisioner(Service& service)
    : access_(service), onts_(access_.read_all(*find_element(ont_path), "candidate")),
      templates_(access_.read_all(*find_element(template_path), "candidate")) {
    for (const auto& [index, record] : onts_.records) {
        if (auto serial = serial_of(record); !serial.empty()) {
            places_.emplace(std::move(serial), index);
        }
    }
}

unsigned Provisioner::template_number(const std::string& name) const {
    std::string names;
    for (const auto& [index, record] : templates_.records) {
        const auto defined = cell_text(value_at(record, "name"));
        if (!defined.empty() && (defined == name || fmt::format("{}", index[0]) == name)) {
            return index[0];
        }
        names += defined.empty() ? "" : fmt::format("\n  {} {}", index[0], defined);
    }
    throw Failure(ExitStatus::usage, fmt::format("There is no ONT template '{}'. These are there:{}", name, names));
}

Index Provisioner::place_for(const Subscriber& subscriber, const std::string& serial) const {
    if (const auto known = places_.find(serial); known != places_.end()) {
        throw Failure(ExitStatus::refused,
                      fmt::format("{} is configured already, as ONT {}.", serial, text_of(known->second)));
    }
    for (auto at = onts_.records.lower_bound({subscriber.port, subscriber.ont, 0});
         at != onts_.records.end() && at->first[0] == subscriber.port; ++at) {
        const auto& [index, record] = *at;
        const bool is_free = serial_of(record).empty() && !before_.contains(index);
        if (is_free && (subscriber.ont == 0 || index[1] == subscriber.ont)) {
            return index;
        }
        if (subscriber.ont != 0) {
            throw Failure(ExitStatus::refused, fmt::format("ONT {}/{} is taken.", subscriber.port, subscriber.ont));
        }
    }
    throw Failure(ExitStatus::refused, fmt::format("PON port {} has no such free ONT.", subscriber.port));
}

Index Provisioner::provision(const Subscriber& subscriber) {
    auto bytes = client::parse_serial(subscriber.serial);
    const auto serial = client::serial_text(bytes.get()); // in the one form in which serials are compared
    if (serial.empty()) {
        throw Failure(ExitStatus::usage,
                      fmt::format("'{}' is no serial. Write SIMUA0030011 or 53494D55A0030011.", subscriber.serial));
    }
    const auto number = template_number(subscriber.ont_template);
    const auto place = place_for(subscriber, serial);
    const core::JsonTree record(cJSON_CreateObject());
    cJSON_AddItemToObject(record.get(), "serial", bytes.release());
    cJSON_AddNumberToObject(record.get(), "ont_template", number);
    cJSON_AddStringToObject(record.get(), "description", subscriber.description.c_str());
    access_.write(*find_element(ont_path), {{place, record.get()}});
    before_.emplace(place, onts_.records.at(place));
    places_.emplace(serial, place);
    return place;
}

void Provisioner::undo() {
    access_.write(*find_element(ont_path), before_);
    std::erase_if(places_, [&](const auto& known) { return before_.contains(known.second); });
    before_.clear();
}

} // namespace xpon::oltctl
