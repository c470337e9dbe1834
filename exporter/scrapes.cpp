#include "exporter/scrapes.hpp"

#include <cstdio>
#include <exception>
#include <utility>

#include <fmt/format.h>

namespace xpon::exporter {

using std::chrono::steady_clock;

Scrapes::Scrapes(std::function<std::string()> collect, std::chrono::milliseconds interval)
    : collect_(std::move(collect)), interval_(interval) {}

std::shared_ptr<const std::string> Scrapes::text() {
    std::unique_lock lock(mutex_);
    if (is_collecting_) {
        finished_.wait(lock, [&] { return !is_collecting_; });
        return text_;
    }
    if (text_ && steady_clock::now() - changed_ < interval_) {
        return text_;
    }
    is_collecting_ = true;
    changed_ = steady_clock::now();
    text_.reset(); // two at a time would double the memory
    lock.unlock();
    std::shared_ptr<const std::string> text;
    try {
        text = std::make_shared<const std::string>(collect_());
    } catch (const std::exception& error) { // such as a lack of memory, which may pass
        fmt::print(stderr, "olt_exporter: no collection: {}\n", error.what());
    }
    lock.lock();
    text_ = std::move(text);
    is_collecting_ = false;
    changed_ = steady_clock::now();
    finished_.notify_all();
    return text_;
}

bool Scrapes::is_stuck(std::chrono::milliseconds longest) {
    const std::scoped_lock lock(mutex_);
    return is_collecting_ && steady_clock::now() - changed_ > longest;
}

} // namespace xpon::exporter
