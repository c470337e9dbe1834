#include "tests/unit/simulator/reports/everything.hpp"

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

TEST(PlantDeterminism, EqualHistoriesGiveEqualBytes) {
    const auto play = [](std::uint64_t seed, bool asks_often) {
        const auto faulty = parameters(512, "faulty", seed);
        AccessNetwork network(faulty, configured(faulty, 400, subscriber_services));
        for (auto now = 0s; now < 6000s; now += 97s) {
            network.advance(now);
            if (now == 97s * 20) {
                auto configuration = configured(faulty, 450, subscriber_services);
                configuration.front[0].enabled = false;
                configuration.onts.at(256).provision = 2;
                network.happen(&Plant::configure, configuration);
                auto cut = fault("ont_los", "3");
                cut.until = now + 400s;
                network.happen(&Plant::set_fault, cut);
                network.happen(&Plant::set_fault, fault("ont_attenuation", "1/1", 5));
            }
            if (asks_often) {
                everything(network);
            }
        }
        return everything(network);
    };
    const auto bytes = play(1, false);
    EXPECT_EQ(play(1, true), bytes);
    EXPECT_NE(play(2, false), bytes);
}

} // namespace
} // namespace xpon::simulator
