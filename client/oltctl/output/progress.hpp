#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

namespace xpon::oltctl {

/// A bar on standard error that tells how far something is; nothing where that is no terminal.
class ProgressBar {
public:
    ProgressBar(std::string what, std::size_t total) : what_(std::move(what)), total_(total) {}
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    /// Takes the bar away, so that what is written next stands in its place.
    ~ProgressBar();

    void advance_to(std::size_t done);

private:
    std::string what_;
    std::size_t total_;
    std::size_t drawn_permille_ = 1001; ///< none
};

/// Does something of which nobody knows how far it is, and shows for how long it has been going on.
void show_time_of(const std::string& what, const std::function<void()>& work);

} // namespace xpon::oltctl
