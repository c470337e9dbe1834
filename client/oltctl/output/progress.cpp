#include "client/oltctl/output/progress.hpp"

#include "client/oltctl/output/terminal.hpp"

#include <algorithm>
#include <chrono>
#include <future>
#include <iostream>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

constexpr auto to_the_beginning = "\r\033[K"; // and all of the line erased

} // namespace

ProgressBar::~ProgressBar() {
    if (drawn_permille_ <= 1000) {
        std::cerr << to_the_beginning << std::flush;
    }
}

void ProgressBar::advance_to(std::size_t done) {
    const auto permille = total_ == 0 ? 1000 : std::min<std::size_t>(1000, 1000 * done / total_);
    if (!errors_are_a_terminal() || permille == drawn_permille_) {
        return;
    }
    drawn_permille_ = permille;
    constexpr std::size_t width = 40;
    const auto full = permille * width / 1000;
    std::cerr << fmt::format("{}{} [{:#<{}}{:.<{}}] {}/{}", to_the_beginning, what_, "", full, "", width - full, done,
                             total_)
              << std::flush;
}

void show_time_of(const std::string& what, const std::function<void()>& work) {
    if (!errors_are_a_terminal()) {
        work();
        return;
    }
    const auto begin = std::chrono::steady_clock::now();
    auto done = std::async(std::launch::async, work);
    while (done.wait_for(std::chrono::milliseconds(200)) != std::future_status::ready) {
        const auto passed =
            std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - begin).count();
        std::cerr << fmt::format("{}{} ... {} s", to_the_beginning, what, passed) << std::flush;
    }
    std::cerr << to_the_beginning << std::flush;
    done.get();
}

} // namespace xpon::oltctl
