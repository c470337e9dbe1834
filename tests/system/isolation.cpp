#include "tests/system/isolation.hpp"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

/// This program once more, by the script that isolates whatever is tested here. Returns when that fails.
void start_isolated(char** arguments) {
    char script[] = XPON_SOURCE_DIR "/scripts/isolated";
    char sources[] = XPON_SOURCE_DIR;
    char binaries[] = BINARY_FOLDER;
    char end_of_folders[] = "--";
    std::vector<char*> command{script, sources, binaries, end_of_folders};
    while (*arguments != nullptr) {
        command.push_back(*arguments++);
    }
    command.push_back(nullptr);
    execv(script, command.data());
    std::perror(script);
}

} // namespace

namespace xpon::test {

bool is_isolated() {
    const char* answer = std::getenv("IS_ISOLATED");
    return answer != nullptr && answer == std::string_view("yes");
}

} // namespace xpon::test

int main(int argc, char** argv) {
    if (std::getenv("IS_ISOLATED") == nullptr) {
        start_isolated(argv);
        return EXIT_FAILURE;
    }
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
