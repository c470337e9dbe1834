#include "ipc/ipc_handle.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"
#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/database_log.hpp"
#include "xpon/peer_side/operations.hpp"
#include "xpon/service/config_change.hpp"

#include <cerrno>
#include <cstring>
#include <utility>

#include <sys/stat.h>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::cfgdb {
namespace {

using test::nothing_to_commit;
using testing::HasSubstr;

/// Keeps the notices that a commit sends, and may refuse one.
class RecordingIpc : public ipc::IIpc {
public:
    struct Handle : Ipc {
        Reply request(ipc::Address, std::uint16_t, std::span<const std::byte>,
                      std::chrono::milliseconds) noexcept override {
            return {};
        }
        std::optional<Refusal> ask_all(std::uint16_t operation, std::span<const std::byte>,
                                       std::chrono::milliseconds) noexcept override {
            EXPECT_EQ(peer_side::Operation{operation}, peer_side::Operation::accept_configuration);
            return refusal;
        }
        void notify_all(std::uint16_t operation, std::span<const std::byte> payload) noexcept override {
            EXPECT_EQ(peer_side::Operation{operation}, peer_side::Operation::configuration_changed);
            std::vector<service::Config_change> changes(payload.size() / sizeof(service::Config_change));
            std::memcpy(changes.data(), payload.data(), payload.size());
            for (const auto& [element, indices] : changes) {
                notices.push_back(fmt::format("{}/{}/{}", element, indices[0], indices[1]));
            }
        }
        std::optional<Refusal> refusal;
        std::vector<std::string> notices;
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
    ipc->handle->refusal = {peer_side::peers::pon_state_machine, EPERM};
    EXPECT_EQ(test::commit(client_, ipc), "configuration: Peer fsm-pon refused the configuration");
    EXPECT_EQ(test::hostname(client_), "olt");
    EXPECT_TRUE(ipc->handle->notices.empty());

    ipc->handle->refusal.reset();
    EXPECT_EQ(test::commit(client_, ipc), "");
    EXPECT_EQ(test::hostname(client_), "olt-7");
    const auto position = [](ElementId id) { return std::to_string(static_cast<int>(id)); };
    EXPECT_THAT(ipc->handle->notices, testing::UnorderedElementsAre(position(element_of<GSystemHostname>) + "/0/0",
                                                                    position(element_of<PonOnt>) + "/4095/0",
                                                                    position(element_of<OntServices>) + "/4095/7"));
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

TEST_F(Candidate, KnowsItsUsers) {
    EXPECT_EQ(client_.find_user_by_username("admin").value().web_privilege, 3);
    for (const std::string name : {"", "adm", "admin ", "Admin", "a name that no record has the room for"}) {
        EXPECT_EQ(client_.find_user_by_username(name).error().info->message, "User not found") << name;
    }
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

TEST(Database, IsMadeAnewWhenItsFileIsNone) {
    const test::TemporaryOltRoot root;
    const auto logger = std::make_shared<test::RecordingLogger>();
    set_database_log(logger);
    for (const std::size_t size : {1U, 200U, 5000U}) {
        root.write("run/cfgdb/data.mdb", std::string(size, 'x'));
        logger->clear();
        EXPECT_TRUE(CfgDbWrapper("TEST").find_user_by_username("admin").has_value());
        EXPECT_THAT(logger->texts(), testing::Contains(HasSubstr("was damaged and is made anew")));
    }
    set_database_log(nullptr);
}

TEST(Database, SaysWhyItCannotBeOpened) {
    const test::TemporaryOltRoot root;
    root.write("run", "no folder");
    EXPECT_THAT([] { CfgDbWrapper("TEST"); }, testing::ThrowsMessage<std::runtime_error>(HasSubstr("/run/cfgdb")));
}

} // namespace
} // namespace xpon::cfgdb
