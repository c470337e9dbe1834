#include "ipc/ipc_handle.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"
#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/core/call_sequence.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/operations.hpp"
#include "xpon/peer_side/running_commits.hpp"

#include <cerrno>
#include <cstring>
#include <functional>
#include <utility>

#include <sys/stat.h>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::cfgdb {
namespace {

using test::nothing_to_commit;

/// Keeps the notices that a commit sends, and may refuse one.
class RecordingIpc : public ipc::IIpc {
public:
    struct Handle : Ipc {
        Reply request(ipc::Address, std::uint16_t, std::span<const std::byte>,
                      std::chrono::milliseconds) noexcept override {
            return {};
        }
        [[nodiscard]] ipc::Address own_address() const noexcept override {
            return {7};
        }
        std::optional<ipc::Address> ask_all(std::uint16_t operation, std::span<const std::byte>,
                                            std::chrono::milliseconds) noexcept override {
            EXPECT_EQ(peer_side::Operation{operation}, peer_side::Operation::accept_configuration);
            while_asked();
            return refusing;
        }
        void notify_all(std::uint16_t operation, std::span<const std::byte> payload) noexcept override {
            EXPECT_EQ(peer_side::Operation{operation}, peer_side::Operation::configuration_changed);
            EXPECT_EQ(payload.size(), sizeof(std::uint64_t));
            std::memcpy(&notices.emplace_back(), payload.data(), sizeof(std::uint64_t));
        }
        std::optional<ipc::Address> refusing;
        std::function<void()> while_asked = [] {};
        std::vector<std::uint64_t> notices;
    };

    core::Result<void> connect(ipc::Address) override {
        return core::success();
    }
    [[nodiscard]] Ipc* raw() const override {
        return handle.get();
    }

    std::unique_ptr<Handle> handle = std::make_unique<Handle>();
};

class Candidate : public testing::Test {
protected:
    test::TemporaryOltRoot root_;
    CfgDbWrapper client_{"TEST"};
};

TEST_F(Candidate, KeepsWhatDiffersFromRunningUntilItIsCommitted) {
    test::apply(client_, {test::edit_hostname("olt-7")});
    EXPECT_EQ(test::hostname(client_), "olt");
    EXPECT_EQ(test::hostname(CfgDbWrapper("OTHER"), Store::candidate), "olt-7");
    test::apply(client_, {test::edit_hostname("olt")});
    EXPECT_EQ(test::commit(client_), nothing_to_commit);

    GSystemHostname record{"olt-7"};
    record.hostname[sizeof(record.hostname) - 1] = 'x'; // what follows the NUL is not part of the record
    ASSERT_EQ(setDb_CommonGCfg_hostname(client_.handle(), client_.context(), &record, nullptr), 0);
    EXPECT_EQ(test::commit(client_), "");
    EXPECT_EQ(test::hostname(client_), "olt-7");
    test::apply(client_, {test::edit_hostname("olt-7")});
    EXPECT_EQ(test::commit(client_), nothing_to_commit);

    test::apply(client_, {test::edit_hostname("olt-8")});
    EXPECT_EQ(test::hostname(client_, Store::candidate), "olt-8");
    ASSERT_TRUE(client_.rollback().has_value());
    EXPECT_EQ(test::hostname(client_, Store::candidate), "olt-7");
}

TEST_F(Candidate, RunsAndIsToldWhenNoPeerRefuses) {
    const auto ipc = std::make_shared<RecordingIpc>();
    test::apply(client_, {test::edit_hostname("olt-7"), test::edit_ont(16, 256, R"({"serial":[1,2,3,4,5,6,7,8,0,0]})"),
                          test::edit_service(16, 256, 8, R"({"c_vid":7})")});
    ipc->handle->refusing = peer_side::peers::pon_state_machine;
    EXPECT_EQ(test::commit(client_, ipc), "configuration: Peer fsm-pon refused the configuration");
    EXPECT_EQ(test::hostname(client_), "olt");
    EXPECT_TRUE(ipc->handle->notices.empty());

    ipc->handle->refusing.reset();
    const auto before = running_number(client_.handle());
    EXPECT_EQ(test::commit(client_, ipc), "");
    EXPECT_EQ(test::hostname(client_), "olt-7");
    EXPECT_THAT(ipc->handle->notices, testing::ElementsAre(before + 1));
    const auto since = running_commits_since(client_.handle(), before);
    ASSERT_EQ(since.commits.size(), 1U);
    EXPECT_EQ(since.commits[0].by, ipc::Address{7});
    std::vector<ElementId> changed;
    for (const auto& change : since.commits[0].changes) {
        changed.push_back(static_cast<ElementId>(change.element));
    }
    EXPECT_THAT(changed, testing::UnorderedElementsAre(element_of<GSystemHostname>, element_of<PonOnt>,
                                                       element_of<OntServices>));
    EXPECT_THAT(since.commits[0].onts, testing::ElementsAre(4095));
}

TEST_F(Candidate, IsWhatThePeersAccepted) {
    const auto ipc = std::make_shared<RecordingIpc>();
    const CfgDbWrapper other("OTHER");
    test::apply(client_, {test::edit_hostname("asked")});
    int asked = 0;
    ipc->handle->while_asked = [&] {
        if (++asked == 1) { // nothing is locked meanwhile
            test::apply(other, {test::edit_hostname("changed")});
        }
    };
    EXPECT_EQ(test::commit(client_, ipc), "");
    EXPECT_EQ(test::hostname(client_), "changed");
    EXPECT_EQ(asked, 2) << "of what is new";

    ipc->handle->while_asked = [&] { test::apply(other, {test::edit_hostname(fmt::format("olt-{}", ++asked))}); };
    test::apply(client_, {test::edit_hostname("asked")});
    EXPECT_EQ(test::commit(client_, ipc), "configuration: Another client keeps changing the candidate");
    EXPECT_EQ(test::hostname(client_), "changed");
}

TEST_F(Candidate, IsSetByASequenceAsFarAsItGoes) {
    const auto set = [&](unsigned short index, const char* description) {
        PonOnt ont{};
        std::strncpy(ont.description, description, sizeof ont.description - 1);
        return setDb_ZebGCfg_pon_ont(client_.handle(), client_.context(), &ont, &index);
    };
    {
        core::CallSequence sequence;
        EXPECT_EQ(set(1, "one"), 0);
        EXPECT_EQ(set(2, "two"), 0);
        EXPECT_EQ(set(2, "new"), 0);
        EXPECT_EQ(set(4096, "beyond"), -1);
        EXPECT_EQ(sequence.finish_work(), 0);
        EXPECT_EQ(set(3, "three"), 0);
    }
    for (const auto& [index, description] : {std::pair(1, "one"), {2, "new"}, {3, "three"}}) {
        EXPECT_STREQ(test::stored<PonOnt>(client_, Store::candidate, {static_cast<std::uint16_t>(index)}).description,
                     description);
    }
}

TEST_F(Candidate, DropsTheServicesOfADeletedOnt) {
    test::apply(client_,
                {test::edit_service(1, 17, 4, R"({"c_vid":7})"), test::edit_service(1, 18, 4, R"({"c_vid":7})")});
    ASSERT_EQ(test::commit(client_), "");
    unsigned short index = 17;
    ASSERT_EQ(setDb_init_ZebGCfg_pon_ont(client_.handle(), 0, &index), 0);
    EXPECT_EQ(test::stored<OntServices>(client_, Store::candidate, {17, 3}).c_vid, 0);
    EXPECT_EQ(test::stored<OntServices>(client_, Store::running, {17, 3}).c_vid, 7);
    EXPECT_EQ(test::stored<OntServices>(client_, Store::candidate, {16, 3}).c_vid, 7);
}

TEST_F(Candidate, GivesAllFrontPortsByTheirNumbers) {
    test::apply(client_, {test::edit<FrontPort>(R"({"max_frame_size":9000})", 16)});
    ASSERT_EQ(test::commit(client_), "");
    FrontPort ports[17];
    std::memset(ports, 'x', sizeof(ports));
    ASSERT_EQ(getRunDbArray_ZebGCfg_switch_config_front_port(client_.handle(), ports), 0);
    EXPECT_EQ(ports[0].max_frame_size, 0);
    EXPECT_EQ(ports[16].max_frame_size, 9000);
}

TEST_F(Candidate, RefusesIndicesBeyondTheTable) {
    PonOnt ont{};
    ont.enabled = 1;
    OntServices service{};
    NtpConfig config{};
    config.servers_count = 5;
    unsigned short beyond[] = {4096, 0};
    const unsigned short beyond_service[] = {0, 8};
    const auto fails_with = [](int cause, int status) { return status == -1 && std::exchange(errno, 0) == cause; };
    const auto* const db = client_.handle();
    EXPECT_TRUE(fails_with(ERANGE, setDb_ZebGCfg_pon_ont(db, 0, &ont, beyond)));
    EXPECT_TRUE(fails_with(ERANGE, getDb_ZebGCfg_pon_ont(db, 0, &ont, beyond)));
    EXPECT_EQ(ont.enabled, 0);
    EXPECT_TRUE(fails_with(ERANGE, setDb_init_ZebGCfg_pon_ont(db, 0, beyond)));
    EXPECT_TRUE(fails_with(ERANGE, getRunDb_ZebGCfg_pon_ont_ont_common_service(db, &service, beyond_service)));
    EXPECT_TRUE(fails_with(EINVAL, getRunDb_ZebGCfg_pon_ont(db, &ont, nullptr)));
    EXPECT_TRUE(fails_with(EINVAL, getRunDb_ZebGCfg_pon_ont(nullptr, &ont, beyond_service)));
    EXPECT_TRUE(fails_with(EINVAL, setDb_CommonGCfg_hostname(db, 0, nullptr, nullptr)));
    EXPECT_TRUE(fails_with(EINVAL, setDb_CommonGCfg_system_ntp(db, 0, &config, nullptr)));
    EXPECT_EQ(test::commit(client_), nothing_to_commit);
}

TEST(Database, IsForItsOwnerAndGoesWithTheLastClient) {
    const test::TemporaryOltRoot root;
    EXPECT_FALSE(configuration_exists());
    auto first = std::make_unique<CfgDbWrapper>("A");
    const CfgDbWrapper second("B");
    EXPECT_EQ(first->handle(), second.handle());
    EXPECT_NE(first->context(), second.context());
    first.reset();
    EXPECT_EQ(test::hostname(second), "olt");
    for (const auto& [path, mode] : {std::pair("run/cfgdb", 0700U), std::pair("run/cfgdb/data.mdb", 0600U)}) {
        struct stat status{};
        ASSERT_EQ(stat((root.path() / path).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, mode);
    }
    EXPECT_TRUE(configuration_exists());
}

} // namespace
} // namespace xpon::cfgdb
