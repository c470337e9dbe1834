#include "simulator/plant/traffic.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>

namespace xpon::simulator {
namespace {

using ServiceType = cfgdb::ProfileOntCrossConnect::ServiceType;

constexpr double octets_per_kbit = 125;

enum Way : std::uint64_t { down, up, broadcast };

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

constexpr double broadcast_kbps = 8;

/// By type of service. What IPTV has beside its streams: joining, leaving and the programme guide.
constexpr std::array demands{
    Demand{4000, 600, &downloads, &uploads},
    Demand{16, 4, &queries, &queries},
    Demand{90, 90, &voice, &voice},
    Demand{2, 2, &management, &management},
};
static_assert(demands.size() == static_cast<std::size_t>(ServiceType::management) + 1);

/// What is left of a gigabit for what is in its frames.
constexpr Demand speed_test{940'000, 940'000, &downloads, &downloads};

/// Bounds of a rate as shares of its mean, by profile.
constexpr std::array<RateRange, traffic_profile_names.size()> shares{
    {{RateCurve::least, RateCurve::most}, {0.002, 0.01}, {1.3, RateCurve::most}, {0.97, 1}}};

/// Makes the flows of one ONT.
class Maker {
public:
    Maker(const Circumstances& given, const PhysicalOnt& ont, const OntSettings& settings, PlantTime since,
          const OntUsage& usage)
        : given_(given), ont_(ont), settings_(settings), since_(since), usage_(usage) {}

    [[nodiscard]] ServiceTraffic service(const ServiceSettings& service) const {
        const auto found = usage_.find(service.number);
        const auto usage = found == usage_.end() ? ServiceUsage{} : found->second;
        const bool is_test = usage.profile == TrafficProfile::speed_test;
        const auto& demand = is_test ? speed_test : demands.at(static_cast<std::size_t>(service.type));
        const bool is_voice = service.type == ServiceType::voip;
        const FlowTimes times = is_voice && !is_test ? calls(service.number) : Always{};
        // Nobody calls without a telephone.
        const bool has_users = !is_voice || (settings_.has_telephone && ont_.model->telephone_ports != 0);
        const auto kbps = [&](double mean) {
            const auto& share = shares.at(static_cast<std::size_t>(usage.profile));
            return has_users ? RateRange{mean * share.least, mean * share.most} : RateRange{0, 0};
        };
        const ServiceUse use(given_, ont_, settings_, service, since_);
        return {.number = service.number,
                .use = use,
                .down = {*demand.down_mix, kbps(demand.down_kbps), times, curve(service.number, down)},
                .up = {*demand.up_mix, kbps(demand.up_kbps), times, curve(service.number, up)},
                .retries = {use.hosts, service},
                .multicast =
                    service.type == ServiceType::iptv ? std::optional(streams_of(service, usage)) : std::nullopt};
    }

private:
    [[nodiscard]] RateCurve curve(std::uint64_t service, Way way) const {
        return {given_.random,
                given_.random.number(Purpose::traffic_curve, {ont_.position.port, ont_.position.ont, service, way})};
    }
    /// A call goes both ways.
    [[nodiscard]] FlowTimes calls(std::uint64_t service) const {
        const auto choose = [&](double from, double to, std::uint64_t what) {
            return given_.random.between(from, to, Purpose::traffic_calls,
                                         {ont_.position.port, ont_.position.ont, service, what});
        };
        const double turn_s = choose(2400, 7200, 0);
        return Calls{turn_s, choose(0, turn_s, 1)};
    }
    [[nodiscard]] StreamFlow streams_of(const ServiceSettings& service, const ServiceUsage& usage) const {
        const ViewingLimits limits(settings_);
        return usage.held ? StreamFlow(stream_kbps(given_.random, admitted(given_.random, limits, *usage.held)))
                          : StreamFlow(Viewer(given_.random, ont_.position, service.number, limits));
    }

    const Circumstances& given_;
    const PhysicalOnt& ont_;
    const OntSettings& settings_;
    PlantTime since_;
    const OntUsage& usage_;
};

/// Whatever flows, as one that limits apply to.
using AnyFlow = std::variant<Flow*, StreamFlow*>;
using Flows = std::vector<AnyFlow>;

/// Makes flows share a rate; 0 kbit/s is no limit.
void share(double kbps, const Flows& flows) {
    double wanted = 0;
    for (const auto& any : flows) {
        wanted += std::visit([](const auto* flow) { return flow->peak(); }, any);
    }
    const double limit = kbps * octets_per_kbit;
    if (kbps == 0 || wanted <= limit) {
        return;
    }
    for (const auto& any : flows) {
        std::visit([&](auto* flow) { flow->limit(limit / wanted); }, any);
    }
}

/// The services of a T-CONT share what it may be granted: what the least limited of them may send is no more.
void share_tconts(const OntSettings& settings, std::vector<ServiceTraffic>& services) {
    struct Tcont {
        std::uint32_t kbps = 0;
        Flows flows;
    };
    std::map<unsigned, Tcont> tconts;
    for (std::size_t nth = 0; nth < services.size(); ++nth) {
        auto& tcont = tconts[settings.services[nth].tcont];
        tcont.kbps = std::max(tcont.kbps, settings.services[nth].upstream_kbps);
        tcont.flows.emplace_back(&services[nth].up);
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

Flow::Flow(const FrameMix& mix, const RateRange& kbps, const FlowTimes& times, const RateCurve& curve)
    : mix_(&mix), wanted_{kbps.least * octets_per_kbit, kbps.most * octets_per_kbit}, allowed_(wanted_), times_(times),
      curve_(curve) {}

FlowAmount Flow::until(PlantTime time) const {
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
    return allowed_.most;
}

void Flow::limit(double factor) {
    allowed_.most *= factor;
    allowed_.least = std::min(allowed_.least, allowed_.most);
}

FlowAmount StreamFlow::until(PlantTime time) const {
    const auto* const viewer = std::get_if<Viewer>(&viewer_);
    const double kbit = viewer == nullptr ? std::get<double>(viewer_) * seconds_of(time) : viewer->kbit_until(time);
    const double octets = kbit * octets_per_kbit;
    return {octets * passed_share_, octets * (1 - passed_share_)};
}

const FrameMix& StreamFlow::mix() {
    return streams;
}

double StreamFlow::peak() const {
    const auto* const viewer = std::get_if<Viewer>(&viewer_);
    const double kbps = viewer == nullptr ? std::get<double>(viewer_) : viewer->peak_kbps();
    return kbps * octets_per_kbit * passed_share_;
}

Retries::Retries(const ServiceHosts& hosts, const ServiceSettings& service) : hosts_(hosts.count()) {
    using namespace std::chrono_literals;
    constexpr std::size_t discover = 3; // of a lease, with the agent's option
    bin_ = service.dhcp_agent ? discover : 0;
    period_ = service.dhcp_agent ? 60s : 30s;
    offset_ = hosts.time_between(0s, period_, Purpose::retries, 0);
}

std::uint64_t Retries::count(PlantTime from, PlantTime to) const {
    return hosts_ * static_cast<std::uint64_t>((to + offset_) / period_ - (from + offset_) / period_);
}

SharedFlow::SharedFlow(const Circumstances& given, unsigned pon_port)
    : flow_(announcements, {broadcast_kbps * RateCurve::least, broadcast_kbps * RateCurve::most}, Always{},
            {given.random, given.random.number(Purpose::traffic_curve, {pon_port, Way::broadcast})}),
      usable_(given.uplinks.stretches()) {}

std::uint64_t SharedFlow::count(std::size_t bin, PlantTime from, PlantTime to) const {
    const auto until = [&](PlantTime time) {
        return std::floor(flow_.until(time).passed * flow_.mix().at(bin) / frame_sizes.at(bin));
    };
    double sum = 0;
    for (const auto& part : common(usable_, {{from, to}})) {
        sum += until(part.until) - until(part.since);
    }
    return static_cast<std::uint64_t>(sum);
}

OntTraffic::OntTraffic(const Circumstances& given, const PhysicalOnt& ont, const OntSettings& settings, PlantTime since,
                       const OntUsage& usage) {
    const Maker maker(given, ont, settings, since, usage);
    services.reserve(settings.services.size());
    bool has_broadcast = false;
    Flows all_down;
    Flows all_up;
    for (const auto& service : settings.services) {
        auto& added = services.emplace_back(maker.service(service));
        Flows own_down{&added.down};
        if (added.multicast) {
            own_down.emplace_back(&*added.multicast);
        }
        share(service.downstream_kbps, own_down);
        share(service.upstream_kbps, {&added.up});
        std::ranges::copy(own_down, std::back_inserter(all_down));
        all_up.emplace_back(&added.up);
        has_broadcast = has_broadcast || service.broadcast_downstream;
    }
    if (has_broadcast) {
        broadcast.emplace(given, settings.index / max_onts_per_port + 1U);
    }
    share_tconts(settings, services);
    // What all ONTs get, each gets, and it leaves less for the rest.
    const double reserved = has_broadcast ? broadcast_kbps * RateCurve::most : 0;
    share(settings.downstream_kbps == 0 ? 0 : std::max(settings.downstream_kbps - reserved, 1.0), all_down);
    share(settings.upstream_kbps, all_up);

    // An ONT is asked for its queues, and may talk of its management, whether or not its users send.
    constexpr double always_granted = 2000;
    granted = always_granted;
    for (const auto& any : all_up) {
        granted += std::visit([](const auto* flow) { return flow->peak(); }, any);
    }
}

} // namespace xpon::simulator
