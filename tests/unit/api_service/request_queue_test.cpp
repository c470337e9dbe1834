#include "api_service/request_queue.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

using namespace std::chrono_literals;
using Clients = std::vector<std::shared_ptr<IClientSocket>>;

std::shared_ptr<IClientSocket> client_whose_last_request_took(std::chrono::milliseconds took) {
    auto client = std::make_shared<ClientSocket>(core::UniqueFd());
    client->set_last_request_took(took);
    return client;
}

Clients take_all(RequestQueue& queue) {
    Clients taken;
    while (!queue.empty()) {
        taken.push_back(queue.take());
    }
    return taken;
}

TEST(RequestQueueTest, AnswersInOrderButWhatTakesAMomentBetweenLongAnswers) {
    const auto one_reader = client_whose_last_request_took(8ms);
    const auto other_reader = client_whose_last_request_took(8ms);
    const auto quick = client_whose_last_request_took(1ms);
    const auto later = client_whose_last_request_took(0ms);
    const auto begin = RequestQueue::Clock::now();
    RequestQueue queue;
    queue.add({one_reader, other_reader}, begin);
    EXPECT_EQ(queue.take(), one_reader);
    queue.add({quick, later, quick}, begin + 8ms);
    EXPECT_EQ(take_all(queue), (Clients{quick, later, quick, other_reader}));
}

TEST(RequestQueueTest, NobodyWaitsForEver) {
    const auto reader = client_whose_last_request_took(8ms);
    const auto quick = client_whose_last_request_took(1ms);
    const auto begin = RequestQueue::Clock::now();
    RequestQueue queue;
    queue.add({reader}, begin);
    queue.add({quick}, begin + 15ms);
    queue.add({quick}, begin + 17ms);
    EXPECT_EQ(take_all(queue), (Clients{quick, reader, quick}));
}

} // namespace
} // namespace xpon::api_service
