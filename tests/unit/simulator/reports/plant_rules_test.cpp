#include "simulator/plant/state_archive.hpp"
#include "tests/unit/simulator/reports/everything.hpp"
#include "tests/unit/simulator/reports/ont_counters_fixture.hpp"

#include <map>
#include <set>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

/// A plant to which something happens at every step, and what must hold whatever it is.
class Story {
public:
    explicit Story(std::uint64_t seed)
        : plant_parameters_(parameters(64, "demo", seed)), random_(seed),
          network_(plant_parameters_, configured(plant_parameters_, 60, subscriber_services)) {
        network_.advance(40min);
    }

    void step() {
        const auto before = counters();
        happen();
        network_.advance(network_.plant().now() +
                         PlantTime(random_.number(Purpose::state_duration, {++steps_}) % (25 * 60'000)));
        check(before, counters());
    }
    [[nodiscard]] std::vector<std::byte> truth() const {
        return everything(network_);
    }
    /// Ends, and goes on with what is kept.
    void restart() {
        StateWriter kept;
        kept(network_);
        const auto bytes = kept.take();
        AccessNetwork fresh(plant_parameters_, network_.plant().configuration());
        StateReader state(bytes);
        state(fresh);
        network_ = fresh;
    }

private:
    using Counters = std::map<std::uint16_t, std::vector<std::uint64_t>>;

    [[nodiscard]] const Plant& plant() const {
        return network_.plant();
    }

    [[nodiscard]] Counters counters() const {
        Counters counters;
        for (const auto& [index, settings] : plant().configuration().onts) {
            const auto ont = plant().ont_configured_as(index);
            if (ont && plant().counted(*ont)) {
                counters[index] = counters_of(plant(), index);
            }
        }
        return counters;
    }

    void happen() {
        const auto choose = [&](std::uint64_t what, std::uint64_t count) {
            return random_.number(Purpose::ont_model, {steps_, what}) % count;
        };
        const auto nth = choose(0, plant().configuration().onts.size());
        const auto index = std::next(plant().configuration().onts.begin(), static_cast<std::ptrdiff_t>(nth))->first;
        const auto place = place_of_record(index);
        auto configuration = plant().configuration();
        auto& ont = configuration.onts.at(index);
        restarted_.clear();
        switch (choose(1, 13)) {
        case 0:
            for (auto& port : configuration.front) {
                port.enabled = !port.enabled;
            }
            break;
        case 1:
            ont.services.front().downstream_kbps = 512;
            break;
        case 2:
            ont.user_ports[1].enabled = !ont.user_ports[1].enabled;
            break;
        case 3:
            configuration.front[0].vlans.flip(300);
            break;
        case 4:
            toggle({.kind = FaultKind::pppoe_blocked,
                    .target = {.where = FaultTarget::Where::service,
                               .port = static_cast<std::uint16_t>(place.port),
                               .ont = static_cast<std::uint16_t>(place.ont),
                               .service = 1}});
            return;
        case 5:
            toggle({.kind = FaultKind::ont_attenuation, .target = ont_target(place), .value = 2});
            return;
        case 6:
            network_.happen(&Plant::command_onts, OntCommand::reconfigure, [&](auto told) { return told % 3 == 0; });
            return;
        case 7:
            restarted_ = {index};
            toggle({.kind = FaultKind::ont_los, .target = ont_target(place)});
            return;
        case 8:
            network_.happen(&Plant::set_profile, place, 1U, static_cast<TrafficProfile>(choose(2, 4)));
            return;
        case 9:
            network_.happen(&Plant::choose_groups, place, 2U,
                            steps_ % 3 == 0 ? std::nullopt : std::optional(JoinedGroups{.count = 2, .group = {1, 60}}));
            return;
        case 10:
            network_.happen(&Plant::change_leases, place, 3U, steps_ % 2 == 0);
            return;
        case 11:
            network_.happen(&Plant::end_session, place, 1U);
            return;
        default:
            network_.happen(&Plant::command_onts, OntCommand::reboot, [&](auto told) { return told == index; });
            restarted_ = {index};
            return;
        }
        ++ont.provision;
        network_.happen(&Plant::configure, configuration);
    }
    void toggle(const Fault& fault) {
        if (!network_.happen(&Plant::clear_fault, fault.kind, fault.target)) {
            network_.happen(&Plant::set_fault, fault);
        }
    }

    void check(const Counters& before, const Counters& after) const {
        for (const auto& [index, counters] : before) {
            if (!restarted_.contains(index)) {
                EXPECT_TRUE(after.contains(index) && none_fell(counters, after.at(index))) << index;
            }
        }
        const bool has_uplink = !plant().uplinks().empty();
        for (const auto& [index, settings] : plant().configuration().onts) {
            const auto ont = plant().ont_configured_as(index);
            const bool is_in_service = ont && ont->point.state == ont_operational;
            EXPECT_TRUE(is_in_service || (report_fec_pm(plant(), index).count == 0 &&
                                          report_gem_port_nctp_pm(plant(), index).count == 0))
                << index;
            if (is_in_service && !has_uplink) {
                check_still(plant().metered(*ont));
            }
        }
    }
    /// Nothing has come down for as long as the network has been away.
    void check_still(const MeteredOnt& ont) const {
        const auto since = plant().uplink_history().stretches().back().until;
        if (since >= ont.since) {
            const auto meter = *plant().ont_configured_as(ont.settings.index)->meter;
            const auto then = meter.read(ont, std::max(since, ont.since));
            EXPECT_EQ(then.sent().packets, meter.read(ont, plant().now()).sent().packets) << ont.settings.index;
        }
    }

    PlantParameters plant_parameters_;
    Random random_;
    AccessNetwork network_;
    std::uint64_t steps_ = 0;
    std::set<std::uint16_t> restarted_;
};

TEST(PlantRules, HoldWhateverHappensAndTheSameHappensTwice) {
    for (const std::uint64_t seed : {1, 2}) {
        SCOPED_TRACE(seed);
        Story story(seed);
        Story interrupted(seed);
        for (int nth = 0; nth < 70; ++nth) {
            story.step();
            interrupted.step();
            if (nth % 8 == 3) {
                interrupted.restart();
            }
            ASSERT_EQ(story.truth(), interrupted.truth()) << "step " << nth;
            ASSERT_FALSE(testing::Test::HasFailure()) << "step " << nth;
        }
    }
}

} // namespace
} // namespace xpon::simulator
