#include "simulator/plant/traffic.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>

namespace xpon::simulator {
namespace {

using ServiceType = cfgdb::ProfileOntCrossConnect::ServiceType;

constexpr double octets_per_kbit = 125;

enum Way : std::uint64_t { down, up, multicast, broadcast };

// Frames of          64    100   200   400   800   1400 octets
constexpr FrameMix downloads{0.02, 0.02, 0.03, 0.05, 0.10, 0.78};
constexpr FrameMix uploads{0.30, 0.15, 0.10, 0.10, 0.10, 0.25};
constexpr FrameMix streams{0, 0, 0, 0.005, 0.035, 0.96};
constexpr FrameMix queries{0.30, 0.30, 0.20, 0.10, 0.06, 0.04};
constexpr FrameMix voice{0.01, 0.02, 0.94, 0.02, 0.01, 0};
constexpr FrameMix management{0.10, 0.30, 0.30, 0.20, 0.05, 0.05};
constexpr FrameMix announcements{0.80, 0.14, 0.03, 0.02, 0.01, 0};

/// What services of a type ask for, in kbit/s.
struct Demand {
    double down_kbps;
    double up_kbps;
    const FrameMix* down_mix;
    const FrameMix* up_mix;
};

constexpr double stream_kbps = 6000; ///< of one multicast group
constexpr double broadcast_kbps = 8;

/// By type of service. What IPTV has beside its streams: joining, leaving and the programme guide.
constexpr std::array demands{
    Demand{4000, 600, &downloads, &uploads},
    Demand{16, 4, &queries, &queries},
    Demand{90, 90, &voice, &voice},
    Demand{2, 2, &management, &management},
};
static_assert(demands.size() == static_cast<std::size_t>(ServiceType::management) + 1);

/// Makes the curves and activities of one ONT.
class Maker {
public:
    Maker(const Random& random, const OntPosition& ont) : random_(random), ont_(ont) {}

    [[nodiscard]] RateCurve curve(std::uint64_t service, Way way) const {
        return {random_, random_.number(Purpose::traffic_curve, {ont_.port, ont_.ont, service, way})};
    }
    /// A call goes both ways.
    [[nodiscard]] FlowTimes calls(std::uint64_t service) const {
        const auto choose = [&](double from, double to, std::uint64_t what) {
            return random_.between(from, to, Purpose::traffic_calls, {ont_.port, ont_.ont, service, what});
        };
        const double turn_s = choose(2400, 7200, 0);
        return Calls{turn_s, choose(0, turn_s, 1)};
    }
    [[nodiscard]] Flow streams_of(unsigned service, unsigned max_groups) const {
        const Viewer viewer(random_, ont_, service, max_groups);
        return {streams, stream_kbps, Watching{viewer, viewer.mean_groups(), max_groups == 1 ? 1.0 : 2.0},
                curve(service, multicast)};
    }
    [[nodiscard]] ServiceTraffic service(const ServiceSettings& settings, unsigned max_groups) const {
        const auto& demand = demands.at(static_cast<std::size_t>(settings.type));
        const FlowTimes times = settings.type == ServiceType::voip ? calls(settings.number) : Always{};
        const bool has_streams = settings.type == ServiceType::iptv;
        return {.number = settings.number,
                .down = {*demand.down_mix, demand.down_kbps, times, curve(settings.number, down)},
                .up = {*demand.up_mix, demand.up_kbps, times, curve(settings.number, up)},
                .multicast = has_streams ? std::optional(streams_of(settings.number, max_groups)) : std::nullopt};
    }

private:
    Random random_;
    OntPosition ont_;
};

/// Makes flows share a rate; 0 kbit/s is no limit.
void share(std::uint32_t kbps, const std::vector<Flow*>& flows) {
    double wanted = 0;
    for (const auto* const flow : flows) {
        wanted += flow->peak();
    }
    const double limit = kbps * octets_per_kbit;
    if (kbps == 0 || wanted <= limit) {
        return;
    }
    for (auto* const flow : flows) {
        flow->limit(limit / wanted);
    }
}

void add_down(std::vector<Flow*>& flows, ServiceTraffic& service) {
    flows.push_back(&service.down);
    if (service.multicast) {
        flows.push_back(&*service.multicast);
    }
}

/// The services of a T-CONT share what it may be granted: what the least limited of them may send is no more.
void share_tconts(const OntSettings& settings, std::vector<ServiceTraffic>& services) {
    struct Tcont {
        std::uint32_t kbps = 0;
        std::vector<Flow*> flows;
    };
    std::map<unsigned, Tcont> tconts;
    for (std::size_t nth = 0; nth < services.size(); ++nth) {
        auto& tcont = tconts[settings.services[nth].tcont];
        tcont.kbps = std::max(tcont.kbps, settings.services[nth].upstream_kbps);
        tcont.flows.push_back(&services[nth].up);
    }
    for (const auto& [number, tcont] : tconts) {
        share(tcont.kbps, tcont.flows);
    }
}

} // namespace

double Calls::flowed(PlantTime time) const {
    const double at = seconds_of(time) + offset_s;
    const double turns = std::floor(at / turn_s);
    const double call_s = share * turn_s;
    return turns * call_s + std::min(at - turns * turn_s, call_s);
}

Flow::Flow(const FrameMix& mix, double mean_kbps, const FlowTimes& times, const RateCurve& curve)
    : mix_(&mix),
      wanted_{mean_kbps * octets_per_kbit * RateCurve::least, mean_kbps * octets_per_kbit * RateCurve::most},
      allowed_(wanted_), times_(times), curve_(curve) {}

Flow::Amount Flow::until(PlantTime time) const {
    // The curve is walked while the traffic flows: on average as fast as time passes, with halts in
    // between. So the sum is as quickly known as the curve's own.
    const auto [walked, share] = std::visit(
        [&](const auto& times) { return std::pair(times.flowed(time) / times.share, double{times.share}); }, times_);
    const double height = (curve_.integral(walked) - RateCurve::least * walked) / (RateCurve::most - RateCurve::least);
    const auto sum = [&](const Range& range) {
        return share * (range.least * walked + (range.most - range.least) * height);
    };
    const double passed = sum(allowed_);
    return {passed, sum(wanted_) - passed};
}

double Flow::peak() const {
    return allowed_.most * std::visit([](const auto& times) { return double{times.most}; }, times_);
}

void Flow::limit(double factor) {
    allowed_.most *= factor;
    allowed_.least = std::min(allowed_.least, allowed_.most);
}

OntTraffic::OntTraffic(const Random& random, const OntPosition& ont, const OntSettings& settings) {
    const Maker maker(random, ont);
    services.reserve(settings.services.size());
    bool has_broadcast = false;
    std::vector<Flow*> all_down;
    std::vector<Flow*> all_up;
    for (const auto& service : settings.services) {
        auto& added = services.emplace_back(maker.service(service, settings.max_groups));
        std::vector<Flow*> own_down;
        add_down(own_down, added);
        share(service.downstream_kbps, own_down);
        share(service.upstream_kbps, {&added.up});
        std::ranges::copy(own_down, std::back_inserter(all_down));
        all_up.push_back(&added.up);
        has_broadcast = has_broadcast || service.broadcast_downstream;
    }
    if (has_broadcast) {
        broadcast.emplace(announcements, broadcast_kbps, Always{}, maker.curve(0, Way::broadcast));
        all_down.push_back(&*broadcast);
    }
    share_tconts(settings, services);
    share(settings.downstream_kbps, all_down);
    share(settings.upstream_kbps, all_up);

    // An ONT is asked for its queues, and may talk of its management, whether or not its users send.
    constexpr double always_granted = 2000;
    granted = always_granted;
    for (const auto* const flow : all_up) {
        granted += flow->peak();
    }
}

} // namespace xpon::simulator
