#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace xpon::exporter {

/// Lets any number of scrapes share collections: those that come while one is made wait for it and take it, and so do
/// those that come soon after it. So the OLT's load does not grow with the number of those who watch it.
class Scrapes {
public:
    /// `interval`: from the end of a collection to the beginning of the next one, at least.
    Scrapes(std::function<std::string()> collect, std::chrono::milliseconds interval);

    /// The text of a collection; made in this call when there is none that is new enough. Null when
    /// none could be made.
    std::shared_ptr<const std::string> text();

    /// Whether a collection has been going on for longer than that.
    bool is_stuck(std::chrono::milliseconds longest);

private:
    std::function<std::string()> collect_;
    std::chrono::milliseconds interval_;
    std::mutex mutex_;
    std::condition_variable finished_;
    bool is_collecting_ = false;
    std::chrono::steady_clock::time_point changed_; // when the last collection began, or ended
    std::shared_ptr<const std::string> text_;
};

} // namespace xpon::exporter
