// Clients that ask a server as fast as it answers; prints what each group of them found.

#include "bench/load_group.hpp"
#include "xpon/core/unique_fd.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <exception>
#include <span>
#include <stdexcept>
#include <string_view>

#include <sys/epoll.h>

#include <fmt/format.h>

namespace xpon::bench {
namespace {

constexpr int usage_error = 2;

template <class Number>
Number number_of(std::string_view text) {
    Number number{};
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc()) {
        throw std::invalid_argument(fmt::format("'{}' is no number", text));
    }
    return number;
}

/// All in one thread: the server has the other core to itself.
void run(std::deque<LoadGroup>& groups, std::chrono::milliseconds duration) {
    const core::UniqueFd epoll(::epoll_create1(EPOLL_CLOEXEC));
    for (std::size_t i = 0; i < groups.size(); ++i) {
        groups[i].watch(epoll.get(), static_cast<std::uint32_t>(i));
    }
    const auto end = Clock::now() + duration;
    for (auto& group : groups) {
        group.start();
    }
    std::array<epoll_event, 64> ready; // NOLINT(*-member-init): filled by epoll_wait
    while (!std::ranges::all_of(groups, &LoadGroup::is_finished)) {
        const auto count = ::epoll_wait(epoll.get(), ready.data(), ready.size(), -1);
        for (const auto& event : std::span(ready).first(static_cast<std::size_t>(std::max(count, 0)))) {
            const auto [group, client] = LoadGroup::source_of(event.data.u64);
            groups[group].receive(client, end);
        }
    }
}

} // namespace
} // namespace xpon::bench

int main(int count, char** arguments) {
    using namespace xpon::bench;
    if (count < 5 || count % 2 == 0) {
        fmt::print(stderr, "usage: bench_load PORT MILLISECONDS {{CLIENTS REQUESTS_FILE}}...\n");
        return usage_error;
    }
    try {
        std::deque<LoadGroup> groups;
        for (int i = 3; i < count; i += 2) {
            groups.emplace_back(arguments[i + 1], number_of<std::size_t>(arguments[i]),
                                number_of<std::uint16_t>(arguments[1]));
        }
        run(groups, std::chrono::milliseconds(number_of<int>(arguments[2])));
        for (auto& group : groups) {
            fmt::print("{}\n", group.figures());
        }
    } catch (const std::exception& exception) {
        fmt::print(stderr, "bench_load: {}\n", exception.what());
        return EXIT_FAILURE;
    }
}
