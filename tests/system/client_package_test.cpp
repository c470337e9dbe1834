#include "tests/system/olt.hpp"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::test {
namespace {

/// The example of the client library, as somebody outside of this tree builds and runs it.
class ClientPackage : public testing::Test {
protected:
    std::string run(const std::string& command) {
        Process shell({"/bin/sh", "-c", "exec 2>&1; set -e; cd " + olt_.root().string() + "/tmp; " + command}, {});
        status_ = shell.wait(std::chrono::minutes(2)).value_or(-1);
        return shell.output();
    }
    Olt olt_;
    int status_ = 0;
};

TEST_F(ClientPackage, BuildsTheExampleOfItsPageWhichListsOnts) {
    const std::string source = XPON_SOURCE_DIR "/client/example/list_onts.cpp";
    EXPECT_THAT(read_file(XPON_SOURCE_DIR "/docs/client-library.md"), testing::HasSubstr(read_file(source)));

    const auto installed = run("cmake --install " BINARY_FOLDER " --component client --prefix $PWD/installed");
    ASSERT_EQ(status_, 0) << installed;
    const auto compiled = run("export PKG_CONFIG_PATH=$(dirname $(find installed -name xpon_client.pc)); "
                              "c++ -std=c++20 " +
                              source + " -o by_pkg_config $(pkg-config --cflags --libs xpon_client)");
    ASSERT_EQ(status_, 0) << compiled;
    const auto configured = run("printf 'cmake_minimum_required(VERSION 3.25)\nproject(example CXX)\n"
                                "set(CMAKE_CXX_STANDARD 20)\nfind_package(xpon_client REQUIRED)\n"
                                "add_executable(by_cmake " +
                                source +
                                ")\n"
                                "target_link_libraries(by_cmake xpon_client::client)\n' > CMakeLists.txt; "
                                "cmake -G Ninja -S . -B build -DCMAKE_PREFIX_PATH=$PWD/installed && "
                                "cmake --build build");
    ASSERT_EQ(status_, 0) << configured;

    EXPECT_THAT(run("./build/by_cmake viewer viewer"), testing::HasSubstr("is api_service running?"));
    olt_.start({"--onts", "16", "--configured", "16"});
    for (const auto* program : {"./build/by_cmake", "./by_pkg_config"}) {
        EXPECT_THAT(run(std::string(program) + " viewer viewer"), testing::HasSubstr("OPERATIONAL\n"));
        EXPECT_EQ(status_, 0);
        run(std::string(program) + " viewer wrong");
        EXPECT_EQ(status_, 2);
    }
}

} // namespace
} // namespace xpon::test
