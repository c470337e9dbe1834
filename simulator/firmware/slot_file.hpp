#pragma once

#include "simulator/firmware/image.hpp"
#include "xpon/core/unique_fd.hpp"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>

namespace xpon::simulator {

/// A slot of the OLT's flash: a file with a firmware image, or with none that is valid. An image becomes valid with its
/// header, which is written last: whenever the process or the power goes, the slot is as it was, or invalid, or new.
/// Every call throws std::system_error when the file cannot be used.
class SlotFile {
public:
    explicit SlotFile(std::filesystem::path path);

    /// The image that the slot holds; empty for an invalid slot.
    [[nodiscard]] const std::optional<ImageHeader>& image() const {
        return image_;
    }
    /// Why the slot was found invalid; empty for a valid one.
    [[nodiscard]] const std::string& complaint() const {
        return complaint_;
    }

    /// The three steps of writing an image. The slot is invalid from the first to the last.
    /// @{
    void erase();
    void write(std::size_t at, std::span<const std::byte> part_of_payload);
    void finish(const ImageHeader& header);
    /// @}

private:
    void write_at(off_t at, std::span<const std::byte> bytes);

    std::filesystem::path path_;
    core::UniqueFd file_; ///< while an image is written
    std::optional<ImageHeader> image_;
    std::string complaint_;
};

/// Makes the file of a slot that holds `image`, at once.
void make_slot_file(const std::filesystem::path& path, const FirmwareImage& image);

} // namespace xpon::simulator
