#include "simulator/reports/bitmap.hpp"
#include "simulator/reports/subscriber_report.hpp"
#include "simulator/subscribers/mac_learning.hpp"

#include <algorithm>
#include <charconv>
#include <map>

namespace xpon::simulator {
namespace {

MacAddress parse_mac(std::string_view text) {
    constexpr int hexadecimal = 16;
    MacAddress mac{};
    for (std::size_t byte = 0; byte < mac.size() && text.size() >= byte * 3 + 2; ++byte) {
        std::from_chars(text.data() + byte * 3, text.data() + byte * 3 + 2, mac.at(byte), hexadecimal);
    }
    return mac;
}

class MacTable {
public:
    explicit MacTable(const AccessNetwork& network) : plant_(network.plant()), learning_(network) {}

    void add_hosts(const SubscriberLine& line) {
        for (unsigned host = 0; host < line.hosts.count(); ++host) {
            if (!learning_.is_known(line, host)) {
                continue;
            }
            auto& entry = add(line.service->s_vid, line.mac_of(host));
            entry.kind = switch_port_pon;
            entry.number = static_cast<std::uint8_t>(line.place.port);
            entry.cvid = line.service->c_vid;
            entry.uvid = line.service->uni_vid;
            entry.ont_id = static_cast<std::uint16_t>(line.place.ont);
            entry.gem = line.gem_port();
        }
    }

    /// Every S-VLAN in use has one, which is heard where the VLAN leads into the network.
    void add_gateways() {
        VlanSet vlans;
        for (const auto& [index, ont] : plant_.configuration().onts) {
            for (const auto& service : ont.services) {
                vlans.set(service.s_vid % vlans.size());
            }
        }
        const auto uplinks = plant_.uplinks();
        for (std::uint16_t vid = 1; vid <= max_vlan_id; ++vid) {
            const auto uplink = std::ranges::find_if(uplinks, [&](const Uplink& way) { return way.vlans[vid]; });
            if (vlans[vid] && uplink != uplinks.end()) {
                auto& entry = add(vid, {0x02, 0x53, 0x49, 0xff, static_cast<std::uint8_t>(vid >> 8U),
                                        static_cast<std::uint8_t>(vid)});
                entry.kind = uplink->port.kind;
                entry.number = uplink->port.number;
            }
        }
    }

    void add_own() {
        if (const auto vid = plant_.configuration().management_vlan; vid != 0) {
            auto& entry = add(vid, parse_mac(plant_.parameters().plant->board.mac_address));
            entry.kind = switch_port_cpu;
            entry.number = 1;
            entry.type = mac_entry_static;
        }
    }

    [[nodiscard]] std::vector<Bcm_mac_entry> sorted() {
        std::vector<Bcm_mac_entry> table;
        for (auto& [vid, entries] : by_vlan_) {
            const auto address = [](const Bcm_mac_entry& entry) { return std::to_array(entry.mac); };
            // Hosts are met in the order of their addresses: of the tens of thousands nearly all are in place.
            if (!std::ranges::is_sorted(entries, {}, address)) {
                std::ranges::sort(entries, {}, address);
            }
            table.insert(table.end(), entries.begin(), entries.end());
        }
        return table;
    }

private:
    Bcm_mac_entry& add(std::uint16_t vid, const MacAddress& mac) {
        auto& entry = by_vlan_[vid].emplace_back();
        entry.svid = vid;
        entry.unit = 1;
        std::ranges::copy(mac, entry.mac);
        return entry;
    }

    const Plant& plant_;
    MacLearning learning_;
    std::map<std::uint16_t, std::vector<Bcm_mac_entry>> by_vlan_;
};

} // namespace

std::vector<Bcm_mac_entry> report_mac_table(const AccessNetwork& network) {
    MacTable table(network);
    visit_lines(network, [&](const SubscriberLine& line) { table.add_hosts(line); });
    table.add_gateways();
    table.add_own();
    return table.sorted();
}

std::vector<Bcm_mac_entry> report_mac_table_of_onts(const AccessNetwork& network, const Bitmap_ont_range& range) {
    MacTable table(network);
    visit_lines(network, [&](const SubscriberLine& line) {
        if (contains(range, line.index)) {
            table.add_hosts(line);
        }
    });
    return table.sorted();
}

} // namespace xpon::simulator
