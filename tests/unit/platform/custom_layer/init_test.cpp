#include "tests/support/temporary_olt_root.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/logger/logger.hpp"
#include "xpon/peer_side/configuration_file.hpp"

#include <cerrno>

#include <gmock/gmock.h>
#include <zlog.h>

namespace xpon {
namespace {

TEST(CustomLayerInit, OpensTheDatabaseThatIsThereInEveryCycle) {
    const test::TemporaryOltRoot root;
    root.write("etc/log.conf", "[rules]\nAPI-SERV.DEBUG \"%E(OLT_ROOT)/api.log\"\n");
    // A start cycle as far as logging and the layer are concerned.
    const auto cycle = [] {
        const auto context = logger::Logger::create_context("/etc/log.conf", "API-SERV", 0);
        EXPECT_TRUE(context);
        return custom_layer__init(zlog_get_category("API-SERV"));
    };
    EXPECT_EQ(cycle(), 0);
    // As after the volatile folder was emptied: no cycle goes on with what the one before had open.
    std::filesystem::remove_all(root.path() / "run");
    EXPECT_EQ(cycle(), 0);
    EXPECT_TRUE(cfgdb::configuration_exists());
    std::filesystem::remove_all(root.path() / "run");
    root.write("run", "no folder");
    EXPECT_EQ(cycle(), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_THAT(root.read("api.log"), testing::HasSubstr(root.path().string() + "/run"));
}

} // namespace
} // namespace xpon
