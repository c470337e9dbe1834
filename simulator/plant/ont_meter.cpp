#include "simulator/plant/ont_meter.hpp"

#include "xpon/peer_side/gpon_rates.hpp"

#include <algorithm>
#include <cmath>
#include <functional>

namespace xpon::simulator {
namespace {

constexpr double octets_per_word = 255;
constexpr double data_octets_per_word = 239;
constexpr double bits_per_word = octets_per_word * 8;
constexpr double downstream_bits_per_s = gpon_downstream_kbps * 1000.0;

std::uint64_t whole(double number) {
    return static_cast<std::uint64_t>(number);
}

Frames whole(const std::array<double, frame_sizes.size()>& frames) {
    Frames rounded;
    std::ranges::transform(frames, rounded.of_size.begin(), [](double number) { return whole(number); });
    return rounded;
}

/// What a share of wrong bits does to code words.
struct WordErrors {
    double damaged_per_wrong_bit; ///< less than 1 where several fall into one word
    double uncorrectable_share;   ///< of damaged words

    explicit WordErrors(double bit_error_rate) {
        // Wrong bits come singly, but for one disturbance in a thousand, which lasts longer than can be corrected.
        constexpr double burst_share = 1e-3;
        constexpr double correctable = 8; // octets
        const double wrong_per_word = bit_error_rate * bits_per_word;
        damaged_per_wrong_bit = -std::expm1(-wrong_per_word) / wrong_per_word;
        uncorrectable_share =
            burst_share + (1 - burst_share) * std::pow(std::min(wrong_per_word / (correctable + 1), 1.0), correctable);
    }
};

using Shares = std::array<double, frame_sizes.size()>;

/// The shares of frames of each size that are lost.
Shares lost_shares(double bit_error_rate, bool has_fec) {
    const WordErrors errors(bit_error_rate);
    const double lost_words =
        bit_error_rate * bits_per_word * errors.damaged_per_wrong_bit * errors.uncorrectable_share;
    Shares shares;
    std::ranges::transform(frame_sizes, shares.begin(), [&](unsigned size) {
        constexpr double most = 0.5; // a worse line is no line
        return std::min(has_fec ? lost_words * (1 + size / data_octets_per_word) : bit_error_rate * 8 * size, most);
    });
    return shares;
}

void add_words(FecTally& tally, double bits, double wrong_bits, double bit_error_rate) {
    const WordErrors errors(bit_error_rate);
    const double damaged = wrong_bits * errors.damaged_per_wrong_bit;
    const double corrected = damaged * (1 - errors.uncorrectable_share);
    tally.words += bits / bits_per_word;
    tally.corrected += corrected;
    tally.uncorrectable += damaged - corrected;
    tally.extra_bytes += corrected * (1 / errors.damaged_per_wrong_bit - 1);
}

/// Adds what an ONT does in a time of unchanging conditions.
class Counting {
public:
    Counting(const MeteredOnt& ont, const OntTraffic& traffic, const LineConditions& line, PlantTime from, PlantTime to)
        : ont_(ont), traffic_(traffic), line_(line), from_(from), to_(to),
          up_(BitErrorRate::upstream(ont.given.random, ont.hardware, ont.split, line)),
          down_(BitErrorRate::downstream(ont.given.random, ont.hardware, ont.split, line)),
          lost_up_(lost_shares(up_.mean(), ont.settings.upstream_fec)),
          lost_down_(lost_shares(down_.mean(), line.downstream_fec)) {}

    void add(OntTally& tally) const {
        for (const auto& service : traffic_.services) {
            auto& counts = tally.service(service.number);
            add_up(counts.up, service);
            add_flow(counts.down, service.down, service.use.usable, {lost_down_, key_of(service.number, 1)});
            if (service.multicast) {
                add_flow(counts.multicast, *service.multicast, service.use.streams,
                         {lost_down_, key_of(service.number, 2)});
            }
        }
        if (traffic_.broadcast) {
            add_frames(tally.broadcast, {lost_down_, key_of(0, 0)}, [&](std::size_t bin) {
                return static_cast<double>(traffic_.broadcast->count(bin, from_, to_));
            });
        }
        add_line(tally, traffic_.granted);
    }

private:
    /// How frames of a GEM port are lost.
    struct Losses {
        const Shares& shares;
        std::uint64_t key;
    };

    [[nodiscard]] std::uint64_t key_of(std::uint64_t service, std::uint64_t way) const {
        const auto& place = ont_.hardware.position;
        return (std::uint64_t{place.port} << 16U | place.ont) << 8U | service << 4U | way;
    }

    template <class Count>
    void add_frames(FlowTally& tally, const Losses& losses, Count count) const {
        for (std::size_t bin = 0; bin < frame_sizes.size(); ++bin) {
            auto& sent = tally.sent.at(bin);
            const auto before = whole(sent);
            sent += count(bin);
            // Of whole frames, so that never more are lost than sent in any time.
            if (const auto after = whole(sent); after != before) {
                constexpr double grain = 2000; // frames
                const Unevenness chance(ont_.given.random, Purpose::frame_losses, losses.key << 8U | bin, grain);
                tally.lost.at(bin) += (chance.at(static_cast<double>(after)) - chance.at(static_cast<double>(before))) *
                                      losses.shares.at(bin);
            }
        }
    }

    template <class AnyFlow>
    void add_flow(FlowTally& tally, const AnyFlow& flow, const std::vector<Stretch>& usable,
                  const Losses& losses) const {
        const auto passed = pass(tally, flow, usable);
        add_frames(tally, losses, [&](std::size_t bin) { return passed * flow.mix().at(bin) / frame_sizes.at(bin); });
    }

    /// What the users send while they can, and their hosts while they cannot.
    void add_up(FlowTally& tally, const ServiceTraffic& service) const {
        const auto passed = pass(tally, service.up, service.use.usable);
        auto retries = service.retries.count(from_, to_);
        for (const auto& part : common(service.use.usable, {{from_, to_}})) {
            retries -= service.retries.count(part.since, part.until);
        }
        add_frames(tally, {lost_up_, key_of(service.number, 0)}, [&](std::size_t bin) {
            return passed * service.up.mix().at(bin) / frame_sizes.at(bin) +
                   (bin == service.retries.bin() ? static_cast<double>(retries) : 0.0);
        });
    }

    /// The octets that pass while they may.
    template <class AnyFlow>
    double pass(FlowTally& tally, const AnyFlow& flow, const std::vector<Stretch>& usable) const {
        double passed = 0;
        for (const auto& part : common(usable, {{from_, to_}})) {
            const auto before = flow.until(part.since);
            const auto after = flow.until(part.until);
            tally.refused += after.refused - before.refused;
            passed += after.passed - before.passed;
        }
        return passed;
    }

    void add_line(OntTally& tally, double granted) const {
        const double seconds = seconds_of(to_ - from_);
        const double wrong_up = granted * 8 * up_.integral(from_, to_);
        const double wrong_down = downstream_bits_per_s * down_.integral(from_, to_);
        tally.seconds += seconds;
        tally.granted_octets += granted * seconds;
        tally.wrong_bits_up += wrong_up;
        tally.wrong_bits_down += wrong_down;
        if (ont_.settings.upstream_fec) {
            add_words(tally.fec_up, granted * 8 * seconds, wrong_up, up_.mean());
        }
        if (line_.downstream_fec) {
            add_words(tally.fec_down, downstream_bits_per_s * seconds, wrong_down, down_.mean());
        }
    }

    const MeteredOnt& ont_;
    const OntTraffic& traffic_;
    const LineConditions& line_;
    PlantTime from_;
    PlantTime to_;
    BitErrorRate up_;
    BitErrorRate down_;
    Shares lost_up_;
    Shares lost_down_;
};

} // namespace

std::uint64_t Frames::packets() const {
    std::uint64_t sum = 0;
    for (const auto count : of_size) {
        sum += count;
    }
    return sum;
}

std::uint64_t Frames::octets() const {
    std::uint64_t sum = 0;
    for (std::size_t bin = 0; bin < of_size.size(); ++bin) {
        sum += of_size.at(bin) * frame_sizes.at(bin);
    }
    return sum;
}

Frames& Frames::operator+=(const Frames& more) {
    std::ranges::transform(of_size, more.of_size, of_size.begin(), std::plus{});
    return *this;
}

Frames& Frames::operator-=(const Frames& less) {
    std::ranges::transform(of_size, less.of_size, of_size.begin(), std::minus{});
    return *this;
}

Frames FlowTally::frames_sent() const {
    return whole(sent);
}

Frames FlowTally::frames_lost() const {
    return whole(lost);
}

Frames FlowTally::frames_received() const {
    auto received = frames_sent();
    return received -= frames_lost();
}

LinkTraffic OntTally::received() const {
    LinkTraffic sum;
    for (const auto& service : services) {
        sum.add(service.up.frames_received());
    }
    return sum;
}

LinkTraffic OntTally::sent() const {
    LinkTraffic sum;
    for (const auto& service : services) {
        sum.add(service.down.frames_sent());
        sum.add(service.multicast.frames_sent());
    }
    sum.add(broadcast.frames_sent());
    return sum;
}

OntTally OntMeter::read(const MeteredOnt& ont, PlantTime time) const {
    auto tally = counted_ == nullptr ? OntTally{} : *counted_;
    auto from = ont.since;
    if (counted_ != nullptr && counted_until_ > ont.since) {
        from = counted_until_; // a part of this service is among it
    } else {
        ++tally.provisionings;
        tally.provided_services += static_cast<unsigned>(ont.settings.services.size());
    }
    const auto count = [&](const OntTraffic& traffic, const LineConditions& line, PlantTime to) {
        Counting(ont, traffic, line, from, to).add(tally);
        from = to;
    };
    for (const auto& part : parts_) {
        const auto to = std::min(part.until, time);
        if (from >= to) {
            continue;
        }
        if (part.usage == ont.usage) {
            count(ont.traffic, part.line, to);
        } else {
            count({ont.given, ont.hardware, ont.settings, ont.since, part.usage}, part.line, to);
        }
    }
    if (from < time) {
        count(ont.traffic, ont.line, time);
    }
    return tally;
}

void OntMeter::count_until(const MeteredOnt& ont, PlantTime time) {
    counted_ = std::make_shared<const OntTally>(read(ont, time));
    counted_until_ = time;
    std::erase_if(parts_, [&](const Part& part) { return part.until <= time; });
}

void OntMeter::conditions_change(const MeteredOnt& ont, PlantTime now) {
    if (now <= ont.since || (!parts_.empty() && now <= parts_.back().until)) {
        return; // no time has passed under these conditions
    }
    // Counts are asked for of the last half hour; of a line that changes all the time only the later part is kept.
    constexpr std::size_t most_parts = 16;
    if (parts_.size() == most_parts) {
        count_until(ont, parts_.front().until);
    }
    parts_.push_back({now, ont.line, ont.usage});
}

void OntMeter::service_ends(const MeteredOnt& ont, PlantTime now) {
    count_until(ont, now);
}

void OntMeter::settle(const MeteredOnt& ont, PlantTime time) {
    if (time > ont.since && time > counted_until_) {
        count_until(ont, time);
    }
}

void OntMeter::reset() {
    counted_.reset();
    counted_until_ = {};
    parts_.clear();
}

} // namespace xpon::simulator
