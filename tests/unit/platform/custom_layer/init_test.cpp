#include "tests/support/temporary_olt_root.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/logger/logger.hpp"

#include <cerrno>

#include <gmock/gmock.h>
#include <zlog.h>

namespace xpon {
namespace {

using testing::HasSubstr;

class CustomLayerInitTest : public testing::Test {
protected:
    CustomLayerInitTest() {
        root.write("etc/log.conf", "[rules]\nAPI-SERV.DEBUG \"%E(OLT_ROOT)/api.log\"\n");
    }

    /// A start cycle as far as logging and the layer are concerned.
    static int cycle() {
        const auto context = logger::Logger::create_context("/etc/log.conf", "API-SERV", 0);
        EXPECT_TRUE(context);
        errno = 0;
        return custom_layer__init(zlog_get_category("API-SERV"));
    }

    test::TemporaryOltRoot root;
};

TEST_F(CustomLayerInitTest, EveryCycleOpensTheDatabaseThatIsThere) {
    EXPECT_EQ(cycle(), 0);
    EXPECT_TRUE(cfgdb::configuration_exists());
    // As after the volatile folder was emptied: no cycle goes on with what the one before had open.
    std::filesystem::remove_all(root.path() / "run");
    EXPECT_EQ(cycle(), 0);
    EXPECT_TRUE(cfgdb::configuration_exists());
}

TEST_F(CustomLayerInitTest, AFailureIsInTheLogAndHealsLater) {
    root.write("run", "no folder");
    EXPECT_EQ(cycle(), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_THAT(root.read("api.log"), HasSubstr(root.path().string() + "/run"));
    std::filesystem::remove(root.path() / "run");
    EXPECT_EQ(cycle(), 0);
}

} // namespace
} // namespace xpon
