#include "tests/support/process.hpp"
#include "tests/support/temporary_olt_root.hpp"

#include <regex>
#include <string>
#include <utility>

#include <gmock/gmock.h>

namespace xpon {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class BoardTest : public testing::Test {
protected:
    /// What the reader prints with `preloaded` libraries.
    std::string run(const std::string& program, const std::string& preloaded) const {
        const auto folder = root.path().string();
        test::Process reader({program, folder + "/made"}, {{"LD_PRELOAD", preloaded},
                                                           {"PAM_WRAPPER", "1"},
                                                           {"PAM_WRAPPER_SERVICE_DIR", folder},
                                                           {"PAM_WRAPPER_DISABLE_DEEPBIND", "1"},
                                                           {"TMPDIR", folder}});
        EXPECT_EQ(reader.wait(), 0);
        // The wrapper looks through what other processes of this machine are just making or removing below /tmp.
        return std::regex_replace(reader.output(), std::regex("PWRAP_ERROR[^\n]*\n"), "");
    }

    test::TemporaryOltRoot root;
};

constexpr auto elsewhere = "another file: -1 0, -1 0\nother ioctl: 0 3\nother open: made\n";

TEST_F(BoardTest, AnswersFromTheFileWhicheverLibrariesAreBeside) {
    const std::pair<const char*, std::string> cases[] = {
        {BOARD_READER, BOARD_LIBRARY},
        {BOARD_READER, PAM_WRAPPER_LIBRARY " " BOARD_LIBRARY},
        {BOARD_READER_ASAN, ASAN_RUNTIME " " PAM_WRAPPER_LIBRARY " " BOARD_LIBRARY},
    };
    const std::string board = "pon_ports 16\nfront_ports 8\n";
    root.write("run/board", board);
    for (const auto& [program, preloaded] : cases) {
        EXPECT_EQ(run(program, preloaded), std::string("open: 0 16, 0 8\nopen for writing: 0 16, 0 8\n"
                                                       "open64: 0 16, 0 8\nopenat: 0 16, 0 8\ndup: 0 16, 0 8\n") +
                                               elsewhere)
            << preloaded;
    }
    EXPECT_EQ(root.read("run/board"), board);
}

TEST_F(BoardTest, WithoutTheFileTheDeviceIsMissing) {
    EXPECT_THAT(run(BOARD_READER, BOARD_LIBRARY),
                AllOf(StartsWith("open: No such file or directory\nopen for writing: No such file or directory\n"),
                      HasSubstr(elsewhere)));
}

TEST_F(BoardTest, ADamagedFileMakesTheRequestsFail) {
    for (const auto* text : {"", "junk", "front_ports 8\npon_ports 16\n", "pon_ports 256\nfront_ports -1\n"}) {
        root.write("run/board", text);
        EXPECT_THAT(run(BOARD_READER, BOARD_LIBRARY), StartsWith("open: -1 0, -1 0\n")) << text;
    }
}

} // namespace
} // namespace xpon
