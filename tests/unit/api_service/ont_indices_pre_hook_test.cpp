#include "api_service/protocol/ont_indices_pre_hook.hpp"
#include "tests/support/recording_logger.hpp"

#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

using Indices = std::vector<std::string>;

class OntIndices : public testing::Test {
protected:
    core::Result<void> run(Indices indices, std::uint8_t pon_ports = 16) {
        request.indices = std::move(indices);
        return OntIndicesPreHook(logger, [=] { return pon_ports; })(nullptr, request);
    }

    std::shared_ptr<test::RecordingLogger> logger = std::make_shared<test::RecordingLogger>();
    Request request;
};

TEST_F(OntIndices, FlattensPairs) {
    const std::pair<Indices, Indices> cases[] = {
        {{"16", "255-256"}, {"4095-4096"}},
        {{"2", "5", "1-3"}, {"261", "1-3"}},
        {{"1-2", "1", "1", "2"}, {"1-2,257"}},
        {{"2,16", "1-256", "2,16", "1-256"}, {"257-512,3841-4096"}},
    };
    for (const auto& [given, flat] : cases) {
        EXPECT_TRUE(run(given));
        EXPECT_EQ(request.indices, flat);
    }
}

TEST_F(OntIndices, RefusesAndLeavesTheRequestAlone) {
    const auto* const wrong_number = "Error: InvalidInputArg. Message: Invalid number of indices for request.";
    const auto* const wrong_port = "Error: OutOfRange. Message: Pon-port index is out of range.";
    const std::tuple<Indices, std::uint8_t, const char*> cases[] = {
        {{"1"}, 16, wrong_number},
        {{"1", "1", "1", "1", "1"}, 16, wrong_number},
        {{"9", "1"}, 8, wrong_port},
        {{"17", "1"}, 0, wrong_port},
        {{"1", "257"}, 16, "Error: OutOfRange. Message: ONT index is out of range."},
        {{"1", "x"}, 16, "Error: InvalidInputArg. Message: Invalid symbol in index 'x'."},
    };
    for (const auto& [indices, pon_ports, log] : cases) {
        logger->clear();
        EXPECT_FALSE(run(indices, pon_ports));
        EXPECT_EQ(request.indices, indices);
        EXPECT_THAT(logger->texts(), testing::ElementsAre(log));
    }
    // A board with more ports than the flat index can hold.
    EXPECT_EQ(run({"17", "1"}, 32).error().code, core::Error::Exception);
}

} // namespace
} // namespace xpon::api_service
