#include "gateway/daemon/session_requests.hpp"

#include <utility>

namespace xpon::gateway {

bool SessionRequests::ask(const std::shared_ptr<Session>& session, std::string text, Clock::time_point deadline,
                          std::function<void(Reply)> done) {
    auto& queue = queues_[session];
    if (queue.size() >= most_waiting_) {
        return false;
    }
    queue.push_back({.text = std::move(text),
                     .deadline = deadline,
                     .incarnation = session->api.incarnation,
                     .background = false,
                     .done = std::move(done)});
    if (queue.size() == 1) {
        send_first(session);
    }
    return true;
}

void SessionRequests::send_first(const std::shared_ptr<Session>& session) {
    Question question = queues_[session].front();
    question.done = [this, session](Reply reply) {
        auto& queue = queues_[session];
        const auto answered = std::move(queue.front());
        queue.pop_front();
        if (queue.empty()) {
            queues_.erase(session);
        } else {
            send_first(session);
        }
        answered.done(std::move(reply));
    };
    daemon_.ask(std::move(question));
}

void SessionRequests::drop(const std::shared_ptr<Session>& session) {
    const auto found = queues_.find(session);
    if (found == queues_.end()) {
        return;
    }
    auto& queue = found->second;
    std::deque<Question> dropped;
    while (queue.size() > 1) {
        dropped.push_front(std::move(queue.back()));
        queue.pop_back();
    }
    for (auto& question : dropped) {
        question.done({.answer = {}, .trouble = Trouble::restarted, .incarnation = 0});
    }
}

} // namespace xpon::gateway
