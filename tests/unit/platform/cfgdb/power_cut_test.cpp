// The power is cut behind every step of a save, and whatever was not synced is lost, torn or there. What is found as
// saved configuration is the old one or the new one, whole; once the save has said that it is done, the new one.

#include "cfgdb/durable_file.hpp"
#include "cfgdb/saved_file.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"
#include "tests/unit/platform/cfgdb/recorded_disk.hpp"
#include "xpon/peer_side/configuration_file.hpp"

#include <algorithm>
#include <fstream>
#include <string>

#include <gmock/gmock.h>

namespace xpon::cfgdb {
namespace {

constexpr const char* saved_name = "save-config";

class PowerCut : public testing::Test {
protected:
    void run_and_save(const std::string& hostname) {
        test::apply(client_, {test::edit_hostname(hostname)});
        ASSERT_EQ(test::commit(client_), "");
        ASSERT_EQ(save_running_configuration(client_.handle(), ("/configuration/" + std::string(saved_name)).c_str()),
                  0);
    }

    [[nodiscard]] std::string saved() const {
        return root_.read("configuration/" + std::string(saved_name));
    }

    /// Saves once more and looks at what each moment may leave. `old`: what may be found before the end.
    void save_and_cut(const std::string& old) {
        const test::RecordedDisk disk(folder_);
        run_and_save("new");
        const auto fresh = saved();
        ASSERT_NE(fresh, old);
        ASSERT_GT(disk.size(), 4U);
        for (std::size_t steps = 0; steps <= disk.size(); ++steps) {
            for (const auto& left : disk.after_power_cut(steps)) {
                const auto found = left.find(saved_name);
                const auto text = found == left.end() ? std::string() : found->second;
                EXPECT_TRUE(text == fresh || (text == old && steps < disk.size()))
                    << "cut behind step " << steps << " of " << disk.size() << ": " << text.size() << " bytes are left";
            }
        }
        last_ = disk.after_power_cut(disk.size());
    }

    test::TemporaryOltRoot root_;
    const std::filesystem::path folder_ = root_.path() / "configuration";
    CfgDbWrapper client_{"TEST"};
    std::vector<test::FolderContents> last_; ///< what may be left after the last step
};

TEST_F(PowerCut, InTheFirstSave) {
    save_and_cut("");
}

TEST_F(PowerCut, InALaterSave) {
    run_and_save("old");
    run_and_save("older");
    save_and_cut(saved());
}

TEST_F(PowerCut, InASaveOverADamagedFileKeepsThatToo) {
    run_and_save("old");
    auto damaged = saved();
    damaged[damaged.find("\"old\"") + 1] = 'g'; // no longer what the checksum is of
    std::ofstream(folder_ / saved_name) << damaged;
    save_and_cut(damaged);
    for (const auto& left : last_) {
        const auto original = std::ranges::find_if(
            left, [](const auto& file) { return file.first.find(".original-") != file.first.npos; });
        ASSERT_NE(original, left.end());
        EXPECT_EQ(original->second, damaged);
    }
}

} // namespace
} // namespace xpon::cfgdb
