#include "simulator/firmware/firmware.hpp"

#include "simulator/firmware/image_maker.hpp"
#include "xpon/custom_layer/commands.h"
#include "xpon/peer_side/fixed_text.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <fstream>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <fmt/chrono.h>
#include <unistd.h>

namespace xpon::simulator {
namespace {

namespace fs = std::filesystem;

constexpr unsigned slot_count = 2;

[[noreturn]] void refuse(int cause, const std::string& text) {
    throw std::system_error(cause, std::generic_category(), text);
}

fs::path folder_of(const BoardModel& board) {
    return fs::path(below_olt_root("/firmware")) / board.serial_number;
}

fs::path slot_path(const fs::path& folder, unsigned slot) {
    return folder / fmt::format("slot-{}.img", slot);
}

fs::path choice_path(const fs::path& folder) {
    return folder / "next-boot";
}

/// Slot 0 unless the file says otherwise.
std::uint8_t read_choice(const fs::path& folder) {
    unsigned slot = 0;
    return std::ifstream(choice_path(folder)) >> slot && slot < slot_count ? static_cast<std::uint8_t>(slot) : 0;
}

/// "2024-05-17 08:30:00" as seconds since 1970.
std::uint32_t parse_time(std::string_view text) {
    std::tm time{};
    ::strptime(std::string(text).c_str(), "%Y-%m-%d %H:%M:%S", &time);
    return static_cast<std::uint32_t>(::timegm(&time));
}

} // namespace

fs::path firmware_file(const std::string& path) {
    return below_olt_root((fs::path("/") / path).lexically_normal().string());
}

FirmwareImage factory_image(const BoardModel& board, unsigned slot) {
    const std::string version(board.firmware[slot]);
    constexpr std::uint32_t usual_size = 3 * smallest_payload;
    const auto size = usual_size + crc32_of(std::as_bytes(std::span(version))) % 65536;
    return make_image(version, size, parse_time(board.firmware_built[slot]));
}

Firmware_version_info describe_image(const ImageHeader& image) {
    Firmware_version_info info{};
    put_text(info.version, image.version);
    put_text(info.built, fmt::format("{:%F %T}", fmt::gmtime(std::time_t{image.built})));
    info.size = image.payload_size;
    info.crc = image.payload_crc;
    info.valid = 1;
    return info;
}

Firmware::Firmware(Settings settings, std::optional<unsigned> running)
    : settings_(std::move(settings)), folder_(folder_of(*settings_.board)) {
    fs::create_directories(folder_);
    for (unsigned slot = 0; slot < slot_count; ++slot) {
        if (!fs::exists(slot_path(folder_, slot))) {
            make_slot_file(slot_path(folder_, slot), factory_image(*settings_.board, slot));
        }
        files_.emplace_back(slot_path(folder_, slot));
    }
    chosen_ = read_choice(folder_);
    settle_choice();
    running_ = running && *running < slot_count ? static_cast<std::uint8_t>(*running) : chosen_;
}

FirmwareSlots Firmware::slots() const {
    FirmwareSlots slots{.slots = {}, .running = running_, .chosen = chosen_};
    for (unsigned slot = 0; slot < slot_count; ++slot) {
        const auto& image = files_.at(slot).image();
        if (image && !settings_.is_spoilt(slot)) {
            slots.slots.at(slot) = describe_image(*image);
        }
    }
    return slots;
}

void Firmware::boot() {
    if (update_) {
        update_.reset();
        last_status_ = ECANCELED;
    }
    settle_choice();
    running_ = chosen_;
}

void Firmware::settle_choice() {
    if (const auto slot = slots().next_boot(); slot != chosen_) {
        choose(slot);
    }
}

void Firmware::select(std::uint32_t selector) {
    if (selector != firmware_current && selector != firmware_alternate) {
        refuse(EINVAL, fmt::format("there is no firmware {} to select", selector));
    }
    const auto slot = selector == firmware_current ? running_ : 1U - running_;
    if (!slots().is_valid(slot)) {
        refuse(EINVAL, fmt::format("slot {} holds no valid firmware", slot));
    }
    choose(slot);
}

void Firmware::choose(unsigned slot) {
    // One byte that changes in place is the old one or the new one.
    const auto path = choice_path(folder_);
    const core::UniqueFd file(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    const auto text = fmt::format("{}\n", slot);
    if (!file || ::pwrite(file.get(), text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()) ||
        ::fdatasync(file.get()) != 0) {
        refuse(errno, path.string());
    }
    chosen_ = static_cast<std::uint8_t>(slot);
}

void Firmware::start_update(const std::string& path) {
    if (update_) {
        refuse(EBUSY, fmt::format("firmware {}: another update is being written", path));
    }
    if (path.empty()) {
        refuse(ENOENT, "firmware: no path");
    }
    Update update{.image = read_image(firmware_file(path)), .slot = 1U - running_, .begun = Clock::now()};
    files_.at(update.slot).erase();
    update_ = std::move(update);
}

std::vector<std::string> Firmware::complaints() const {
    std::vector<std::string> complaints;
    for (unsigned slot = 0; slot < slot_count; ++slot) {
        if (const auto& complaint = files_.at(slot).complaint(); !complaint.empty()) {
            complaints.push_back(fmt::format("firmware slot {} is invalid: {}", slot, complaint));
        }
    }
    return complaints;
}

std::optional<std::string> Firmware::write_on() {
    if (!update_) {
        return std::nullopt;
    }
    std::string outcome;
    try {
        if (!write_some()) {
            return std::nullopt;
        }
        outcome = fmt::format("firmware {} written to slot {}", update_->image.header.version, update_->slot);
        last_status_ = 0;
    } catch (const std::system_error& fault) {
        outcome = fmt::format("firmware not written to slot {}: {}", update_->slot, fault.what());
        last_status_ = fault.code().value();
    }
    update_.reset();
    return outcome;
}

bool Firmware::write_some() {
    static constexpr std::size_t largest_piece = 4 * 1024 * 1024;
    auto& [image, slot, begun, written] = *update_;
    const auto size = image.payload.size();
    const std::chrono::duration<double, std::milli> passed = Clock::now() - begun;
    const bool is_due = passed >= settings_.write_time;
    const auto due =
        is_due ? size : static_cast<std::size_t>(static_cast<double>(size) * (passed / settings_.write_time));
    const auto piece = std::min(due - std::min(written, due), largest_piece);
    if (piece != 0) {
        files_.at(slot).write(written, std::span(image.payload).subspan(written, piece));
        written += piece;
    }
    if (!is_due || written < size) {
        return false;
    }
    files_.at(slot).finish(image.header);
    return true;
}

} // namespace xpon::simulator
