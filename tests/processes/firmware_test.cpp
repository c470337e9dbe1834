#include "custom_layer/own_connection.hpp"
#include "ipc/ipc_handle.hpp"
#include "simulator/firmware/image_maker.hpp"
#include "tests/processes/live_olt.hpp"
#include "tests/support/eventually.hpp"
#include "tests/support/recording_logger.hpp"
#include "xpon/peer_side/operations.hpp"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <future>
#include <string>
#include <tuple>

#include <sys/stat.h>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using test::eventually;
using testing::HasSubstr;

constexpr std::uint32_t mib = 1024 * 1024;
constexpr auto old_running = "1.4.2.118";
constexpr auto old_alternate = "1.4.1.97";

class FirmwareTest : public LiveOltTest {
protected:
    explicit FirmwareTest(const std::string& write_s = "0")
        : LiveOltTest({"--onts", "0", "--firmware-write-s", write_s}),
          command_line{OLT_SIMULATOR, "--clock-rate", "0", "--onts", "0", "--firmware-write-s", write_s} {
        custom_layer::renew_own_connection(std::make_shared<test::RecordingLogger>());
    }

    std::filesystem::path put_image(const std::string& name, const FirmwareImage& image) const {
        const auto path = root.path() / "firmware" / name;
        write_image(path, image);
        return path;
    }
    static int update(const std::string& path) {
        errno = 0;
        return custom_layer__update_firmware(path.c_str()) == 0 ? 0 : errno;
    }
    int select(std::uint32_t selector, void* reserved = nullptr) const {
        errno = 0;
        return custom_layer__select_image(ipc(), selector, reserved) == 0 ? 0 : errno;
    }
    using Slots = std::tuple<std::string, std::string, int, int>;
    /// Version by slot, "" for an invalid one; running and next-boot slot.
    static Slots slots() {
        Firmware_version_info info[2];
        std::uint8_t running = 9;
        std::uint8_t next = 9;
        for (std::uint8_t slot = 0; slot < 2; ++slot) {
            EXPECT_EQ(custom_layer__get_firmware_version_info(slot, &info[slot]), 0);
            EXPECT_EQ(info[slot].valid != 0, info[slot].version[0] != '\0');
        }
        EXPECT_EQ(custom_layer__get_running_firmware_index(&running), 0);
        EXPECT_EQ(custom_layer__get_next_boot_firmware_index(&next), 0);
        return {info[0].version, info[1].version, running, next};
    }
    void reboot() {
        ASSERT_EQ(custom_layer__reboot(reboot_now), 0);
        must({"step", "21"});
        ASSERT_TRUE(eventually([this] { return errno_of_environment() == 0; }));
    }
    void start_again() {
        simulator = std::make_unique<test::Process>(command_line, test::Environment{});
        ASSERT_TRUE(simulator->wait_for_line("olt_simulator is ready"));
        control = std::make_unique<ControlClient>();
        ASSERT_TRUE(eventually([this] { return errno_of_environment() == 0; }));
        // The layer's own connection as well.
        ASSERT_TRUE(eventually([] { return custom_layer__reconfigure_olt() == 0; }));
    }
    void kill_and_start_again() {
        simulator->send_signal(SIGKILL);
        ASSERT_TRUE(simulator->wait());
        start_again();
    }

    std::vector<std::string> command_line;
};

TEST_F(FirmwareTest, AnUpdateWritesTheOtherSlotAndABootRunsIt) {
    EXPECT_EQ(slots(), Slots(old_running, old_alternate, 0, 0));
    const auto file = (root.path() / "firmware/new.img").string();
    test::Process maker(
        {OLT_SIM, "make-image", "--version", "1.5.0.1", "--size-mib", "2", "--built", "1724842800", file}, {});
    ASSERT_EQ(maker.wait(), 0);
    EXPECT_EQ(update("/firmware/new.img"), 0);
    EXPECT_EQ(slots(), Slots(old_running, "1.5.0.1", 0, 0));
    Firmware_version_info info;
    ASSERT_EQ(custom_layer__get_firmware_version_info(1, &info), 0);
    EXPECT_STREQ(info.built, "2024-08-28 11:00:00");
    EXPECT_EQ(info.size, 2 * mib);

    EXPECT_EQ(select(firmware_alternate), 0);
    EXPECT_EQ(slots(), Slots(old_running, "1.5.0.1", 0, 1));
    kill_and_start_again();
    EXPECT_EQ(slots(), Slots(old_running, "1.5.0.1", 0, 1));
    reboot();
    EXPECT_EQ(slots(), Slots(old_running, "1.5.0.1", 1, 1));
    // Now it is the other one's turn. However the path is written, it stays below OLT_ROOT.
    put_image("newer.img", make_image("1.6", mib, 0));
    EXPECT_EQ(update("firmware/../../../firmware/newer.img"), 0);
    EXPECT_EQ(slots(), Slots("1.6", "1.5.0.1", 1, 1));
    EXPECT_THAT(root.read("var/log/events.log"), HasSubstr("firmware 1.6 written to slot 0"));
    // As after a power cut: what ran is forgotten, what was chosen is not.
    EXPECT_EQ(select(firmware_alternate), 0);
    simulator->send_signal(SIGTERM);
    EXPECT_EQ(simulator->wait(), 0);
    std::filesystem::remove(root.path() / "run/device_facts");
    start_again();
    EXPECT_EQ(slots(), Slots("1.6", "1.5.0.1", 0, 0));
}

TEST_F(FirmwareTest, RefusalsTouchNothingAndSayWhy) {
    const auto image = make_image("1.5.0.1", mib, 0);
    const auto with = [&](const std::function<void(ImageHeader&)>& edit) {
        auto edited = image;
        edit(edited.header);
        return edited;
    };
    auto damaged = image;
    damaged.payload.back() ^= std::byte{1};
    // The header's own checksum is right: what follows it is judged.
    const struct {
        const char* name;
        FirmwareImage image;
        int cause;
        const char* reason;
    } cases[] = {
        {"version.img", with([](auto& header) { header.version = ""; }), EINVAL, "version is no text"},
        {"blank.img", with([](auto& header) { header.version = "1 5"; }), EINVAL, "version is no text"},
        {"small.img", with([](auto& header) { header.payload_size = mib - 1; }), EINVAL, "payload of 1048575 bytes"},
        {"large.img", with([](auto& header) { header.payload_size = 64 * mib + 1; }), EINVAL, "possible are"},
        {"foreign.img", with([](auto& header) { header.hardware_id = 0x4F4C5402; }), ENODEV, "hardware 0x4f4c5402"},
        {"short.img", with([](auto& header) { header.payload_size += 1; }), ENODATA, "its header asks for 1048641"},
        {"payload.img", damaged, EBADMSG, "checksum of its payload"},
    };
    const auto is_refused = [this](const std::string& path, int cause, const char* reason) {
        EXPECT_EQ(update(path), cause) << path;
        EXPECT_EQ(slots(), Slots(old_running, old_alternate, 0, 0)) << path;
        EXPECT_THAT(root.read("var/log/events.log"), HasSubstr(reason));
    };
    const auto board_folder = root.path() / "firmware/SIM0A0000042";
    const auto before = std::filesystem::last_write_time(board_folder / "slot-1.img");
    for (const auto& [name, bad, cause, reason] : cases) {
        put_image(name, bad);
        is_refused("/firmware/" + std::string(name), cause, reason);
    }

    // Bytes of the header, by place.
    const struct {
        std::streamoff at;
        int cause;
        const char* reason;
    } bytes[] = {
        {0, EINVAL, "does not begin with SIMOLTFW"},
        {8, EINVAL, "format"},
        {10, EINVAL, "a header of"},
        {51, EINVAL, "version is no text"},
        {16, EBADMSG, "checksum of its header"},
        {57, EBADMSG, "checksum of its header"},
        {61, EBADMSG, "checksum of its header"},
    };
    for (const auto& [at, cause, reason] : bytes) {
        const auto path = put_image("byte.img", image);
        std::fstream(path, std::ios::in | std::ios::out | std::ios::binary).seekp(at).put('#');
        is_refused("/firmware/byte.img", cause, reason);
    }

    const auto path = put_image("size.img", image);
    std::filesystem::resize_file(path, image_header_size + mib + 1);
    is_refused("/firmware/size.img", EFBIG, "it has 1048641 bytes");
    std::filesystem::resize_file(path, image_header_size - 1);
    is_refused("/firmware/size.img", ENODATA, "shorter than a header");
    std::filesystem::resize_file(path, 0);
    is_refused("/firmware/size.img", EINVAL, "does not begin");
    is_refused("/firmware/none.img", ENOENT, "none.img: it cannot be opened");
    is_refused("", ENOENT, "no path");
    is_refused("/firmware", EINVAL, "is no file");
    ASSERT_EQ(::mkfifo((root.path() / "firmware/pipe").c_str(), 0600), 0);
    is_refused("/firmware/pipe", EINVAL, "is no file");
    is_refused("/" + std::string(5000, 'x'), ENAMETOOLONG, "");
    EXPECT_EQ(std::filesystem::last_write_time(board_folder / "slot-1.img"), before);
}

TEST_F(FirmwareTest, OnlyAValidSlotIsSelected) {
    int anything = 0;
    EXPECT_EQ(select(firmware_alternate, &anything), EINVAL);
    EXPECT_EQ(select(2), EINVAL);
    must({"fault", "slot_corrupt", "1"});
    EXPECT_EQ(slots(), Slots(old_running, "", 0, 0));
    EXPECT_EQ(select(firmware_alternate), EINVAL);
    must({"clear", "slot_corrupt", "1"});
    EXPECT_EQ(select(firmware_alternate), 0);
    EXPECT_EQ(slots(), Slots(old_running, old_alternate, 0, 1));
    // The chosen one spoils: a boot takes the other and stays with it.
    must({"fault", "slot_corrupt", "1"});
    EXPECT_EQ(slots(), Slots(old_running, "", 0, 0));
    reboot();
    must({"clear", "slot_corrupt", "1"});
    EXPECT_EQ(slots(), Slots(old_running, old_alternate, 0, 0));
}

TEST_F(FirmwareTest, FaultsOfTheDiskEndTheUpdateAndNotTheOlt) {
    put_image("new.img", make_image("1.5.0.1", mib, 0));
    const auto slot = root.path() / "firmware/SIM0A0000042/slot-1.img";
    std::filesystem::remove(slot);
    std::filesystem::create_symlink("/dev/full", slot);
    EXPECT_EQ(update("/firmware/new.img"), ENOSPC);
    EXPECT_EQ(slots(), Slots(old_running, "", 0, 0));
    EXPECT_THAT(root.read("var/log/events.log"), HasSubstr("refused to 0x001bfffe: " + slot.string()));
    std::filesystem::remove(slot);

    // Nor does it stop when it cannot tell the world.
    const auto in_the_way = root.path() / "run/device_facts.new";
    std::filesystem::create_directory(in_the_way);
    EXPECT_EQ(update("/firmware/new.img"), 0);
    EXPECT_EQ(slots(), Slots(old_running, "", 0, 0));
    std::filesystem::remove(in_the_way);
    EXPECT_TRUE(eventually([] { return slots() == Slots(old_running, "1.5.0.1", 0, 0); }));
}

class SlowFlashTest : public FirmwareTest {
protected:
    SlowFlashTest() : FirmwareTest("2") {
        put_image("new.img", make_image("1.5.0.1", 2 * mib, 0));
    }

    /// The errno of an update, from a thread of its own.
    static std::future<int> update_beside() {
        return std::async(std::launch::async, [] { return update("/firmware/new.img"); });
    }
    /// Waits until so much of the payload is in the slot, which is invalid all the time.
    void await_progress(std::uintmax_t bytes) const {
        const auto file = root.path() / "firmware/SIM0A0000042/slot-1.img";
        ASSERT_TRUE(eventually([&] {
            return std::get<1>(slots()).empty() && std::filesystem::file_size(file) >= image_header_size + bytes;
        }));
    }
    [[nodiscard]] int ask_system_manager(peer_side::Operation operation, std::span<const std::byte> question) const {
        return ipc()
            ->request(peer_side::peers::system_manager, static_cast<std::uint16_t>(operation), question,
                      Ipc::default_deadline)
            .status;
    }
};

TEST_F(SlowFlashTest, AnUpdateBlocksItsCallerAndNobodyElse) {
    const auto begin = std::chrono::steady_clock::now();
    auto updating = update_beside();
    await_progress(1);
    const std::string_view path = "/firmware/new.img";
    EXPECT_EQ(ask_system_manager(peer_side::Operation::update_firmware, std::as_bytes(std::span(path))), EBUSY);
    EXPECT_EQ(ask_system_manager(peer_side::Operation::get_firmware_update_status, {}), EBUSY);
    EXPECT_EQ(select(firmware_alternate), EINVAL);
    while (updating.wait_for(10ms) != std::future_status::ready) {
        const auto asked = std::chrono::steady_clock::now();
        EXPECT_EQ(errno_of_environment(), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - asked, 1500ms);
    }
    EXPECT_EQ(updating.get(), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 2s);
    EXPECT_EQ(slots(), Slots(old_running, "1.5.0.1", 0, 0));
    EXPECT_EQ(ask_system_manager(peer_side::Operation::get_firmware_update_status, {}), 0);
}

TEST_F(SlowFlashTest, AKilledSimulatorLeavesAnOltThatBoots) {
    ASSERT_EQ(select(firmware_alternate), 0);
    for (const std::uintmax_t progress : {std::uintmax_t{0}, std::uintmax_t{mib / 2}, std::uintmax_t{3 * mib / 2}}) {
        auto updating = update_beside();
        await_progress(progress);
        kill_and_start_again();
        // It ends, whether it meets the end of one simulator or the beginning of the next.
        EXPECT_THAT(updating.get(), testing::AnyOf(ECONNRESET, ECONNREFUSED, EHOSTDOWN, ECANCELED));
        EXPECT_EQ(slots(), Slots(old_running, "", 0, 0));
        EXPECT_THAT(root.read("var/log/events.log"), HasSubstr("firmware slot 1 is invalid"));
    }
    EXPECT_EQ(update("/firmware/new.img"), 0);
    EXPECT_EQ(slots(), Slots(old_running, "1.5.0.1", 0, 0));
}

} // namespace
} // namespace xpon::simulator
