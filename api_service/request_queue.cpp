#include "api_service/request_queue.hpp"

#include <algorithm> // NOLINT(misc-include-cleaner): std::ranges::upper_bound
#include <utility>

namespace xpon::api_service {

void RequestQueue::add(const std::vector<std::shared_ptr<IClientSocket>>& clients, Clock::time_point now) {
    entries_.erase(entries_.begin(), entries_.begin() + static_cast<std::ptrdiff_t>(std::exchange(next_, 0)));
    entries_.reserve(entries_.size() + clients.size());
    for (const auto& client : clients) {
        const auto took = client->last_request_took();
        const auto due = took < long_request ? now : now + 2 * took;
        entries_.insert(std::ranges::upper_bound(entries_, due, {}, &Entry::due), {.client = client, .due = due});
    }
}

std::shared_ptr<IClientSocket> RequestQueue::take() {
    return std::move(entries_[next_++].client);
}

} // namespace xpon::api_service
