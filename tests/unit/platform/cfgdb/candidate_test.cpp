#include "cfgdb/element.hpp"
#include "ipc/ipc_handle.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/unit/platform/cfgdb/temporary_root.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/cfgdb/database_log.hpp"
#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/service/config_change.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>

#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::cfgdb {
namespace {

using core::Error;
using testing::ElementsAre;

/// Keeps the notices that a commit sends, and may refuse one.
class RecordingIpc : public ipc::IIpc {
public:
    struct Handle : Ipc {
        Reply request(ipc::Address, ipc::Operation, std::span<const std::byte>, std::chrono::milliseconds) override {
            return {};
        }
        std::optional<Refusal> ask_all(ipc::Operation operation, std::span<const std::byte>,
                                       std::chrono::milliseconds) override {
            EXPECT_EQ(operation, ipc::Operation::accept_configuration);
            return refusal;
        }
        void notify_all(ipc::Operation operation, std::span<const std::byte> payload) override {
            EXPECT_EQ(operation, ipc::Operation::configuration_changed);
            std::vector<service::Config_change> changes(payload.size() / sizeof(service::Config_change));
            std::memcpy(changes.data(), payload.data(), payload.size());
            for (const auto& change : changes) {
                notices.push_back(std::to_string(change.element) + "/" + std::to_string(change.indices[0]) + "/" +
                                  std::to_string(change.indices[1]));
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
    std::string hostname(bool is_running) const {
        GSystemHostname record{};
        EXPECT_EQ(is_running ? getRunDb_CommonGCfg_hostname(client_.handle(), &record, nullptr)
                             : getDb_CommonGCfg_hostname(client_.handle(), client_.context(), &record, nullptr),
                  0);
        return record.hostname;
    }

    void set_hostname(const std::string& name) const {
        GSystemHostname record{};
        // What follows the NUL is not part of the record.
        std::memset(record.hostname, 'x', sizeof(record.hostname) - 1);
        std::memcpy(record.hostname, name.c_str(), name.size() + 1);
        ASSERT_EQ(setDb_CommonGCfg_hostname(client_.handle(), client_.context(), &record, nullptr), 0);
    }

    Error commit() {
        const auto result = client_.commit(ipc_);
        return result.has_error() ? result.error().code : Error::NoError;
    }

    test::TemporaryRoot root_;
    CfgDbWrapper client_{"TEST"};
    std::shared_ptr<RecordingIpc> ipc_ = std::make_shared<RecordingIpc>();
};

TEST_F(Candidate, IsSharedAndRunsWhenCommitted) {
    EXPECT_EQ(hostname(true), "olt");
    EXPECT_EQ(commit(), Error::Empty);
    set_hostname("olt-7");
    EXPECT_EQ(hostname(true), "olt");
    const CfgDbWrapper other("OTHER");
    GSystemHostname seen{};
    ASSERT_EQ(getDb_CommonGCfg_hostname(other.handle(), other.context(), &seen, nullptr), 0);
    EXPECT_STREQ(seen.hostname, "olt-7");
    EXPECT_EQ(commit(), Error::NoError);
    EXPECT_EQ(hostname(true), "olt-7");
    EXPECT_EQ(commit(), Error::Empty);
}

TEST_F(Candidate, KeepsOnlyWhatDiffersFromRunning) {
    set_hostname("olt-7");
    set_hostname("olt");
    EXPECT_EQ(commit(), Error::Empty);

    set_hostname("olt-7");
    EXPECT_EQ(commit(), Error::NoError);
    ASSERT_EQ(setDb_init_CommonGCfg_hostname(client_.handle(), client_.context(), nullptr), 0);
    EXPECT_EQ(hostname(false), "olt");
    EXPECT_EQ(hostname(true), "olt-7");
    ASSERT_TRUE(client_.rollback().has_value());
    EXPECT_EQ(hostname(false), "olt-7");
    EXPECT_EQ(commit(), Error::Empty);
}

TEST_F(Candidate, TellsPeersWhichRecordsChanged) {
    set_hostname("olt-7");
    PonOnt ont{};
    ont.serial = 0x53494D5500000001;
    OntServices service{};
    service.c_vid = 7;
    const unsigned short indices[] = {4095, 7};
    ASSERT_EQ(setDb_ZebGCfg_pon_ont(client_.handle(), 0, &ont, indices), 0);
    ASSERT_EQ(setDb_ZebGCfg_pon_ont_ont_common_service(client_.handle(), 0, &service, indices), 0);
    EXPECT_EQ(commit(), Error::NoError);
    const auto position = [](ElementId id) { return std::to_string(static_cast<int>(id)); };
    EXPECT_THAT(ipc_->handle->notices,
                testing::UnorderedElementsAre(position(ElementId::CommonGCfg_hostname) + "/0/0",
                                              position(ElementId::ZebGCfg_pon_ont) + "/4095/0",
                                              position(ElementId::ZebGCfg_pon_ont_ont_common_service) + "/4095/7"));
}

TEST_F(Candidate, StaysWhatItIsWhenAPeerRefuses) {
    set_hostname("olt-7");
    ipc_->handle->refusal = {ipc::peers::pon_state_machine, EPERM};
    const auto refused = client_.commit(ipc_);
    ASSERT_TRUE(refused.has_error());
    EXPECT_EQ(refused.error().code, Error::InvalidState);
    EXPECT_EQ(refused.error().info->message, "configuration: Peer fsm-pon refused the configuration");
    EXPECT_EQ(hostname(true), "olt");
    EXPECT_TRUE(ipc_->handle->notices.empty());
    ipc_->handle->refusal.reset();
    EXPECT_EQ(commit(), Error::NoError);
    EXPECT_EQ(hostname(true), "olt-7");
}

TEST_F(Candidate, DropsTheServicesOfADeletedOnt) {
    OntServices service{};
    service.c_vid = 7;
    for (const std::uint16_t ont : {std::uint16_t{16}, std::uint16_t{17}}) {
        const unsigned short indices[] = {ont, 3};
        ASSERT_EQ(setDb_ZebGCfg_pon_ont_ont_common_service(client_.handle(), 0, &service, indices), 0);
    }
    EXPECT_EQ(commit(), Error::NoError);
    unsigned short indices[] = {17, 3};
    ASSERT_EQ(setDb_init_ZebGCfg_pon_ont(client_.handle(), 0, indices), 0);
    ASSERT_EQ(getDb_ZebGCfg_pon_ont_ont_common_service(client_.handle(), 0, &service, indices), 0);
    EXPECT_EQ(service.c_vid, 0);
    ASSERT_EQ(getRunDb_ZebGCfg_pon_ont_ont_common_service(client_.handle(), &service, indices), 0);
    EXPECT_EQ(service.c_vid, 7);
    indices[0] = 16;
    ASSERT_EQ(getDb_ZebGCfg_pon_ont_ont_common_service(client_.handle(), 0, &service, indices), 0);
    EXPECT_EQ(service.c_vid, 7);
}

TEST_F(Candidate, GivesAllFrontPortsByTheirNumbers) {
    FrontPort port{};
    port.max_frame_size = 9000;
    const unsigned short last = 15;
    ASSERT_EQ(setDb_ZebGCfg_switch_config_front_port(client_.handle(), 0, &port, &last), 0);
    EXPECT_EQ(commit(), Error::NoError);
    FrontPort ports[17];
    std::memset(ports, 'x', sizeof(ports));
    ASSERT_EQ(getRunDbArray_ZebGCfg_switch_config_front_port(client_.handle(), ports), 0);
    EXPECT_EQ(ports[0].enabled, 0);
    EXPECT_EQ(ports[0].max_frame_size, 0);
    EXPECT_EQ(ports[1].enabled, 1);
    EXPECT_EQ(ports[15].max_frame_size, 2000);
    EXPECT_EQ(ports[16].max_frame_size, 9000);
}

TEST_F(Candidate, RefusesIndicesBeyondTheTable) {
    PonOnt ont{};
    ont.enabled = 1;
    OntServices service{};
    unsigned short beyond[] = {4096, 0};
    const unsigned short beyond_service[] = {0, 8};
    const auto fails_with = [](int cause, int status) { return status == -1 && std::exchange(errno, 0) == cause; };
    EXPECT_TRUE(fails_with(ERANGE, setDb_ZebGCfg_pon_ont(client_.handle(), 0, &ont, beyond)));
    EXPECT_TRUE(fails_with(ERANGE, getDb_ZebGCfg_pon_ont(client_.handle(), 0, &ont, beyond)));
    EXPECT_EQ(ont.enabled, 0);
    EXPECT_TRUE(fails_with(ERANGE, setDb_init_ZebGCfg_pon_ont(client_.handle(), 0, beyond)));
    EXPECT_TRUE(
        fails_with(ERANGE, getRunDb_ZebGCfg_pon_ont_ont_common_service(client_.handle(), &service, beyond_service)));
    EXPECT_TRUE(fails_with(EINVAL, getRunDb_ZebGCfg_pon_ont(client_.handle(), &ont, nullptr)));
    EXPECT_TRUE(fails_with(EINVAL, getRunDb_ZebGCfg_pon_ont(nullptr, &ont, beyond_service)));
    EXPECT_TRUE(fails_with(EINVAL, setDb_CommonGCfg_hostname(client_.handle(), 0, nullptr, nullptr)));
    NtpConfig config{};
    config.servers_count = 5;
    EXPECT_TRUE(fails_with(EINVAL, setDb_CommonGCfg_system_ntp(client_.handle(), 0, &config, nullptr)));
    EXPECT_EQ(commit(), Error::Empty);
}

TEST_F(Candidate, KnowsItsUsers) {
    EXPECT_EQ(client_.find_user_by_username("admin").value().web_privilege, 3);
    EXPECT_EQ(client_.find_user_by_username("guest").value().web_privilege, 0);
    for (const std::string name : {"", "adm", "admin ", "Admin", "a name that no record has the room for"}) {
        const auto unknown = client_.find_user_by_username(name);
        ASSERT_TRUE(unknown.has_error()) << name;
        EXPECT_EQ(unknown.error().code, Error::Empty);
        EXPECT_EQ(unknown.error().info->message, "User not found");
    }
}

TEST(Database, IsForItsOwnerAndGoesWithTheLastClient) {
    const test::TemporaryRoot root;
    EXPECT_FALSE(configuration_exists());
    auto first = std::make_unique<CfgDbWrapper>("A");
    const CfgDbWrapper second("B");
    EXPECT_EQ(first->handle(), second.handle());
    EXPECT_NE(first->context(), second.context());
    first.reset();
    EXPECT_TRUE(second.find_user_by_username("admin").has_value());
    struct stat status{};
    ASSERT_EQ(stat((root.path() / "run/cfgdb").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
    ASSERT_EQ(stat((root.path() / "run/cfgdb/data.mdb").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    EXPECT_TRUE(configuration_exists());
}

TEST(Database, IsMadeAnewWhenItsFileIsNone) {
    const test::TemporaryRoot root;
    const auto logger = std::make_shared<test::RecordingLogger>();
    set_database_log(logger);
    for (const std::size_t size : {1U, 200U, 5000U}) {
        std::filesystem::create_directories(root.path() / "run/cfgdb");
        std::ofstream(root.path() / "run/cfgdb/data.mdb", std::ios::trunc) << std::string(size, 'x');
        logger->lines.clear();
        const CfgDbWrapper client("TEST");
        EXPECT_TRUE(client.find_user_by_username("admin").has_value());
        EXPECT_THAT(logger->texts(), testing::Contains(testing::HasSubstr("is damaged and made anew")));
    }
    set_database_log(nullptr);
}

TEST(Database, SaysWhyItCannotBeOpened) {
    const test::TemporaryRoot root;
    setenv("OLT_ROOT", "/dev/null", 1);
    try {
        const CfgDbWrapper client("TEST");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("/dev/null/run/cfgdb"));
    }
}

} // namespace
} // namespace xpon::cfgdb
