#pragma once

#include "simulator/firmware/firmware_slots.hpp"
#include "simulator/firmware/slot_file.hpp"
#include "simulator/plant/equipment.hpp"

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace xpon::simulator {

/// The OLT's firmware: two slots, of which one runs. Slots and choice are files below OLT_ROOT/firmware, in a folder of
/// the board's own, and so survive the simulator. std::system_error is thrown for what is refused, with the errno
/// value that the asker gets, and for faults of the files.
class Firmware {
public:
    struct Settings {
        const BoardModel* board = nullptr;
        /// How long the writing of an image takes at least, in real time.
        std::chrono::milliseconds write_time{};
        /// Whether a fault spoils what a slot holds.
        std::function<bool(unsigned slot)> is_spoilt;
    };

    /// A slot that is missing is made as the board's maker left it. `running`: the slot that has been running since
    /// before the simulator; without it the OLT boots.
    Firmware(Settings settings, std::optional<unsigned> running);

    [[nodiscard]] FirmwareSlots slots() const;
    /// A text for each slot whose file holds no valid image.
    [[nodiscard]] std::vector<std::string> complaints() const;

    /// The next-boot slot runs from now on. An update is cut off.
    void boot();
    /// Chooses by Firmware_selector. EINVAL for another selector or a slot without a valid image.
    void select(std::uint32_t selector);

    /// Judges the image in the file `path`, taken below OLT_ROOT, and begins to write it to the slot that does not run.
    /// A refused one changes nothing. EBUSY while an update runs.
    void start_update(const std::string& path);
    /// EBUSY while an update is being written; then how it ended, 0 or an errno value. ECANCELED when it was cut off,
    /// or when there was none since the simulator's start.
    [[nodiscard]] int update_status() const {
        return update_ ? EBUSY : last_status_;
    }
    /// Writes what is due of the update, in pieces small enough to serve others in between. What became of it, once it
    /// has ended.
    std::optional<std::string> write_on();

private:
    using Clock = std::chrono::steady_clock;
    struct Update {
        FirmwareImage image;
        unsigned slot;
        Clock::time_point begun;
        std::size_t written = 0;
    };

    void choose(unsigned slot);
    /// A chosen slot that is invalid after a start is chosen no more.
    void settle_choice();
    /// True when the image is there.
    bool write_some();

    Settings settings_;
    std::filesystem::path folder_;
    std::vector<SlotFile> files_; ///< two
    std::uint8_t running_ = 0;
    std::uint8_t chosen_ = 0;
    std::optional<Update> update_;
    int last_status_ = ECANCELED;
};

/// What the file of a firmware image is called below OLT_ROOT. "/firmware/new.img" and "firmware/new.img" mean the
/// same; no ".." leads out.
std::filesystem::path firmware_file(const std::string& path);

/// The image in a slot of a board as it is delivered.
FirmwareImage factory_image(const BoardModel& board, unsigned slot);
/// What such a slot is listed as.
Firmware_version_info describe_image(const ImageHeader& image);

} // namespace xpon::simulator
