#include "simulator/plants/plant_reader.hpp"

#include "simulator/plants/described_value.hpp"
#include "simulator/plants/equipment_reader.hpp"
#include "simulator/plants/json_lines.hpp"
#include "xpon/core/json_tree.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

constexpr double longest_uptime_s = 10.0 * 365 * 86400;
constexpr unsigned template_count = 32;

struct NumberRange {
    unsigned first;
    unsigned last;
};

/// "7" or "1-4".
NumberRange range_of(const DescribedValue& value, unsigned most) {
    const auto text = value.text();
    const auto dash = text.find('-');
    const auto parse = [&](std::string_view part) {
        unsigned number = 0;
        const auto [end, fault] = std::from_chars(part.data(), part.data() + part.size(), number);
        return fault == std::errc{} && end == part.data() + part.size() ? number : 0;
    };
    const auto first = parse(std::string_view(text).substr(0, dash));
    const auto last = dash == std::string::npos ? first : parse(std::string_view(text).substr(dash + 1));
    if (first < 1 || last < first || last > most) {
        value.fail(fmt::format("must be a number from 1 to {}, or two with \"-\" in between", most));
    }
    return {first, last};
}

OntPosition ont_of(const DescribedValue& value) {
    const auto target = parse_ont_target(value.text());
    if (!target) {
        value.fail(fmt::format("must be PORT/ONT, 1/1 to {}/{}", pon_ports, max_onts_per_port));
    }
    return {.port = target->port, .ont = target->ont};
}

std::optional<ModuleModel> module_of(const DescribedValue& port, const Modules& modules) {
    const auto name = port.find("module");
    if (!name) {
        return std::nullopt;
    }
    const auto found = modules.find(name->text());
    if (found == modules.end()) {
        name->fail(fmt::format("names no module of \"modules\": '{}'", name->text()));
    }
    return found->second;
}

/// Has `read` fill the plan of each port of each row.
template <class Ports, class Read>
void read_ports(const DescribedValue& rows, Ports& ports, const Read& read) {
    std::set<unsigned> seen;
    for (const auto& row : rows.elements()) {
        const auto which = row.at("ports");
        const auto [first, last] = range_of(which, static_cast<unsigned>(ports.size()));
        for (auto port = first; port <= last; ++port) {
            if (!seen.insert(port).second) {
                which.fail(fmt::format("has port {}, which another row has already", port));
            }
            read(row, ports.at(port - 1), port);
        }
    }
}

void read_front_ports(const DescribedValue& rows, const Modules& modules, PlantDescription& plant) {
    read_ports(rows, plant.front, [&](const DescribedValue& row, FrontPortPlan& port, unsigned) {
        row.check_members({"ports", "module", "link"});
        port.module = module_of(row, modules);
        const auto link = row.find("link");
        port.has_partner = link && link->flag();
    });
}

void read_distance(const DescribedValue& value, PonPortPlan& port) {
    constexpr double farthest_km = 60; // logical reach [G.984.1]
    const auto ends = value.elements();
    if (ends.size() != 2) {
        value.fail("must be a list of two numbers, the nearest and the farthest");
    }
    port.least_km = ends[0].number(0, farthest_km);
    port.most_km = ends[1].number(port.least_km, farthest_km);
}

/// How many ONTs each port has, port 1 first.
using OntCounts = std::array<unsigned, pon_ports>;

OntCounts read_pon_ports(const DescribedValue& rows, const Modules& modules, PlantDescription& plant) {
    OntCounts counts{};
    read_ports(rows, plant.pon, [&](const DescribedValue& row, PonPortPlan& port, unsigned number) {
        row.check_members({"ports", "module", "split", "distance_km", "onts"});
        port.module = module_of(row, modules);
        if (const auto split = row.find("split")) {
            port.split = split->whole(2, 128);
        }
        if (const auto distance = row.find("distance_km")) {
            read_distance(*distance, port);
        }
        if (const auto onts = row.find("onts")) {
            counts.at(number - 1) = onts->whole(0, max_onts_per_port);
        }
    });
    return counts;
}

OntPlan single_ont_of(const DescribedValue& row, const std::vector<OntModel>& models) {
    row.check_members({"ont", "model", "serial_number", "distance_km", "power"});
    OntPlan plan;
    if (const auto name = row.find("model")) {
        const auto found = std::ranges::find(models, name->text(), &OntModel::equipment_id);
        if (found == models.end()) {
            name->fail(fmt::format("names no equipment_id of \"ont_models\": '{}'", name->text()));
        }
        plan.model = static_cast<std::size_t>(found - models.begin());
    }
    if (const auto serial = row.find("serial_number")) {
        plan.serial = serial_number_of(*serial);
    }
    if (const auto distance = row.find("distance_km")) {
        plan.distance_km = distance->number(0, 60);
    }
    if (const auto power = row.find("power")) {
        plan.is_switched_on = power->flag();
    }
    return plan;
}

/// All first ones of the ports, then the second ones, so that any number of them is spread evenly.
std::vector<OntPosition> places_of(const OntCounts& counts, const PlantDescription& plant) {
    std::set<std::pair<unsigned, unsigned>> places; // (ONT, port)
    for (unsigned port = 1; port <= pon_ports; ++port) {
        for (unsigned ont = 1; ont <= counts.at(port - 1); ++ont) {
            places.emplace(ont, port);
        }
    }
    for (const auto& [place, plan] : plant.single_onts) {
        places.emplace(place.ont, place.port);
    }
    std::vector<OntPosition> onts;
    for (const auto& [ont, port] : places) {
        onts.push_back({.port = port, .ont = ont});
    }
    return onts;
}

void read_onts(const DescribedValue& onts, const OntCounts& counts, PlantDescription& plant) {
    onts.check_members({"configured", "offline_share", "single"});
    if (const auto share = onts.find("offline_share")) {
        plant.offline_share = share->number(0, 1);
    }
    if (const auto single = onts.find("single")) {
        for (const auto& row : single->elements()) {
            const auto place = row.at("ont");
            if (!plant.single_onts.emplace(ont_of(place), single_ont_of(row, plant.ont_models)).second) {
                place.fail("stands in another row already");
            }
        }
    }
    plant.onts = places_of(counts, plant);
    if (const auto configured = onts.find("configured")) {
        plant.configured = configured->whole(0, plant.size().onts);
    }
}

void read_services(const DescribedValue& rows, PlantDescription& plant) {
    for (const auto& row : rows.elements()) {
        row.check_members({"onts", "template"});
        const auto [first, last] = range_of(row.at("onts"), max_onts_per_port);
        const auto number = row.at("template").whole(1, template_count);
        plant.services.push_back(
            {.first_ont = first, .last_ont = last, .ont_template = static_cast<std::uint8_t>(number)});
    }
}

void read_subscribers(const DescribedValue& subscribers, SubscriberPlan& plan) {
    subscribers.check_members({"most_hosts", "silent_hosts"});
    if (const auto hosts = subscribers.find("most_hosts")) {
        constexpr unsigned most = 15; // addresses of a service
        plan.most_hosts = hosts->whole(1, most);
    }
    if (const auto share = subscribers.find("silent_hosts")) {
        plan.silent_hosts = share->number(0, 1);
    }
}

InitialFault fault_of(const DescribedValue& row) {
    row.check_members({"fault", "target", "value"});
    const auto name = row.at("fault");
    const auto* const rule = find_fault(name.text());
    if (rule == nullptr) {
        name.fail(fmt::format("names no fault: '{}'; olt_sim faults lists them", name.text()));
    }
    const auto where = row.find("target");
    std::string complaint;
    const auto target = parse_target(*rule, where ? where->text() : "", complaint);
    if (!target) {
        (where ? *where : row).fail("is wrong: " + complaint);
    }
    const auto value = row.find("value");
    if (value && rule->value.empty()) {
        value->fail(fmt::format("is none of {}, which takes no value", rule->name));
    }
    if (!value && !rule->usual_value) {
        row.fail(fmt::format("needs a value: {}", rule->value));
    }
    return {.kind = rule->kind,
            .target = *target,
            .value = value ? value->number(rule->least_value, rule->most_value) : *rule->usual_value};
}

PlantDescription plant_of(const DescribedValue& root) {
    root.check_members({"name", "remark", "uptime_s", "board", "modules", "front_ports", "pon_ports", "ont_models",
                        "onts", "services", "subscribers", "faults"});
    PlantDescription plant;
    plant.name = root.at("name").text();
    if (const auto uptime = root.find("uptime_s")) {
        plant.uptime = std::chrono::seconds(static_cast<long>(uptime->number(0, longest_uptime_s)));
    }
    plant.board = board_of(root.at("board"));
    const auto modules = modules_of(root.at("modules"));
    read_front_ports(root.at("front_ports"), modules, plant);
    const auto counts = read_pon_ports(root.at("pon_ports"), modules, plant);
    plant.ont_models = ont_models_of(root.at("ont_models"));
    if (const auto onts = root.find("onts")) {
        read_onts(*onts, counts, plant);
    } else {
        plant.onts = places_of(counts, plant);
    }
    if (const auto services = root.find("services")) {
        read_services(*services, plant);
    }
    if (const auto subscribers = root.find("subscribers")) {
        read_subscribers(*subscribers, plant.subscribers);
    }
    if (const auto faults = root.find("faults")) {
        for (const auto& row : faults->elements()) {
            plant.faults.push_back(fault_of(row));
            if (const auto complaint = complaint_about(plant, plant.faults.back().target); !complaint.empty()) {
                row.at("target").fail("is wrong: " + complaint);
            }
        }
    }
    return plant;
}

} // namespace

PlantDescription read_plant(std::string_view text, std::string_view source) {
    const char* end = nullptr;
    const core::JsonTree tree(cJSON_ParseWithLengthOpts(text.data(), text.size(), &end, 0));
    if (!tree) {
        throw std::runtime_error(fmt::format("{}: line {}: this is no JSON", source, line_at(text, end)));
    }
    try {
        return plant_of(DescribedValue(tree.get()));
    } catch (const DescriptionError& error) {
        throw std::runtime_error(
            fmt::format("{}: line {}: {}", source, line_of(text, tree.get(), error.value()), error.what()));
    }
}

PlantDescription read_plant_file(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    if (!stream) {
        throw std::system_error(errno, std::generic_category(), file.string());
    }
    return read_plant(text, file.string());
}

} // namespace xpon::simulator
