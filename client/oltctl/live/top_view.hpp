#pragma once

#include "client/oltctl/live/history.hpp"
#include "client/oltctl/live/live_view.hpp"

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace xpon::oltctl {

/// The OLT at a glance: its health, the PON ports with the states of their ONTs and their traffic, and all ONTs that it
/// receives, the one with the least light first.
class TopView : public LiveView {
public:
    void sample(Service& service) override;
    [[nodiscard]] std::vector<Line> head(std::size_t columns) const override;
    [[nodiscard]] std::vector<Line> body(std::size_t columns) const override;

private:
    struct Port {
        std::string state;
        std::string temperature;
        std::string power;
        unsigned operational = 0;
        unsigned configured = 0;
        unsigned unactivated = 0; ///< seen there, but not configured
        bool has_changed = false;
        Rate received; ///< bytes of all its ONTs, from them and to them
        Rate sent;
    };
    struct Ont {
        std::string number; ///< "3/17"; empty when it is not configured
        std::string serial;
        std::string state;
        std::string metres;
        std::string description;
        std::optional<double> rssi_dbm;
    };
    struct Seen {
        std::string state;
        bool has_changed = false;
        History rssi_dbm;
    };

    void sample_system(Service& service);
    void sample_ports(Service& service);
    void sample_onts(Service& service);
    void sample_traffic(Service& service);
    [[nodiscard]] Line line_of(unsigned number, const Port& port, std::size_t columns) const;
    [[nodiscard]] Line line_of(const Ont& ont, std::size_t columns) const;

    std::string health_;
    unsigned port_count_ = 0;
    unsigned samples_ = 0;
    std::map<unsigned, Port> ports_;
    std::vector<Ont> onts_; ///< least light first, those without any last
    std::map<std::string, unsigned> states_;
    std::unordered_map<std::string, Seen> seen_; ///< by serial
};

} // namespace xpon::oltctl
