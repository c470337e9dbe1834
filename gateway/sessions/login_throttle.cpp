#include "gateway/sessions/login_throttle.hpp"

#include <algorithm>
#include <array>
#include <vector>

namespace xpon::gateway {
namespace {

using std::chrono::seconds;
using Clock = LoginThrottle::Clock;

struct Rule {
    unsigned free_refusals; ///< that cost no waiting
    seconds longest_wait;
    unsigned attempts_at_once; ///< under way to the daemon
};
// By LoginThrottle::Count.
constexpr std::array rules{Rule{.free_refusals = 3, .longest_wait = seconds(300), .attempts_at_once = 1},
                           Rule{.free_refusals = 10, .longest_wait = seconds(60), .attempts_at_once = 4},
                           Rule{.free_refusals = 20, .longest_wait = seconds(30), .attempts_at_once = 4}};

constexpr auto forgotten_after = std::chrono::hours(24);
constexpr std::size_t most_records = 20'000;

/// Whoever has an IPv6 address has the other 2^64 of its network as well.
std::string network_of(const std::string& address) {
    if (address.find(':') == std::string::npos || address.starts_with("::ffff:")) {
        return address;
    }
    std::size_t end = 0;
    for (int group = 0; group < 4 && end != std::string::npos; ++group) {
        end = address.find(':', end + 1);
    }
    const auto compressed = address.find("::");
    return address.substr(0, std::min(end, compressed));
}

seconds wait_after(unsigned refusals, const Rule& rule) {
    if (refusals < rule.free_refusals) {
        return seconds(0);
    }
    const auto doublings = std::min(refusals - rule.free_refusals, 16U);
    return std::min(seconds(1U << doublings), rule.longest_wait);
}

} // namespace

LoginThrottle::Key LoginThrottle::pair_key(const std::string& address, const std::string& user) {
    return {Count::pair, network_of(address), user};
}

LoginThrottle::Key LoginThrottle::address_key(const std::string& address) {
    return {Count::address, network_of(address), ""};
}

LoginThrottle::Key LoginThrottle::user_key(const std::string& user) {
    return {Count::user, "", user};
}

seconds LoginThrottle::begin(const std::string& address, const std::string& user, Clock::time_point now) {
    make_room(now);
    auto& pair = records_[pair_key(address, user)];
    auto& of_address = records_[address_key(address)];
    auto& of_user = records_[user_key(user)];
    seconds wait(0);
    const auto ask = [&](const Record& record, Count count) {
        const auto& rule = rules.at(static_cast<std::size_t>(count));
        if (record.under_way >= rule.attempts_at_once) {
            wait = std::max(wait, seconds(1));
        }
        wait = std::max(wait, std::chrono::ceil<seconds>(record.next - now));
    };
    ask(pair, Count::pair);
    ask(of_address, Count::address);
    if (!pair.has_logged_in) {
        ask(of_user, Count::user);
    }
    for (auto* record : {&pair, &of_address, &of_user}) {
        record->last = now;
        record->under_way += wait == seconds(0) ? 1 : 0;
    }
    return wait;
}

void LoginThrottle::end(const std::string& address, const std::string& user, Outcome outcome, Clock::time_point now) {
    for (const auto& key : {pair_key(address, user), address_key(address), user_key(user)}) {
        auto& record = records_[key];
        const auto count = std::get<Count>(key);
        record.under_way -= std::min(record.under_way, 1U);
        if (outcome == Outcome::refused) {
            ++record.refusals;
            record.next = now + wait_after(record.refusals, rules.at(static_cast<std::size_t>(count)));
        } else if (outcome == Outcome::granted && count == Count::pair) {
            record = {.refusals = 0, .under_way = record.under_way, .has_logged_in = true, .next = {}, .last = now};
        }
    }
}

void LoginThrottle::make_room(Clock::time_point now) {
    if (records_.size() + 3 <= most_records) {
        return;
    }
    std::erase_if(records_, [&](const auto& entry) {
        const auto& record = entry.second;
        return record.under_way == 0 && now - record.last > forgotten_after;
    });
    // Somebody has tried that many users or addresses: what is forgotten first is what has cost them least.
    for (unsigned refusals = 0; records_.size() > most_records / 2 && refusals < 32; ++refusals) {
        std::erase_if(records_, [&](const auto& entry) {
            const auto& record = entry.second;
            return record.under_way == 0 && !record.has_logged_in && record.refusals <= refusals;
        });
    }
}

} // namespace xpon::gateway
