#include "simulator/firmware/slot_file.hpp"

#include "simulator/files/whole_file.hpp"
#include "simulator/firmware/image_maker.hpp"

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace xpon::simulator {

SlotFile::SlotFile(std::filesystem::path path) : path_(std::move(path)) {
    try {
        image_ = read_image(path_).header;
    } catch (const std::system_error& fault) {
        complaint_ = fault.what();
    }
}

void SlotFile::erase() {
    file_ = core::UniqueFd(::open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    if (!file_) {
        throw std::system_error(errno, std::generic_category(), path_.string());
    }
    image_.reset();
    complaint_ = "it is being written";
    write_at(0, ImageHeaderBytes{});
    if (::ftruncate(file_.get(), image_header_size) != 0) {
        throw std::system_error(errno, std::generic_category(), path_.string());
    }
}

void SlotFile::write(std::size_t at, std::span<const std::byte> part_of_payload) {
    write_at(static_cast<off_t>(image_header_size + at), part_of_payload);
}

void SlotFile::finish(const ImageHeader& header) {
    write_at(0, encode(header));
    file_ = {};
    image_ = header;
    complaint_.clear();
}

void SlotFile::write_at(off_t at, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const auto count = ::pwrite(file_.get(), bytes.data(), bytes.size(), at);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            throw std::system_error(count < 0 ? errno : EIO, std::generic_category(), path_.string());
        }
        at += count;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    if (::fdatasync(file_.get()) != 0) {
        throw std::system_error(errno, std::generic_category(), path_.string());
    }
}

void make_slot_file(const std::filesystem::path& path, const FirmwareImage& image) {
    replace_file(path, [&](const std::filesystem::path& unfinished) { write_image(unfinished, image); });
}

} // namespace xpon::simulator
