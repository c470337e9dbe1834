#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>

namespace xpon::gateway {

/// Slows down those who guess passwords, and nobody else. After some refusals each further attempt has to wait, twice
/// as long each time; three counts are kept, from strict to lenient:
/// - of an address for a user;
/// - of an address, whichever users it tries;
/// - of a user, whichever addresses try it: addresses from which the user has logged in are exempt, so that an attack
///   on an account does not shut its owner out.
class LoginThrottle {
public:
    using Clock = std::chrono::steady_clock;

    /// How long the attempt has to wait, zero for not at all: then it is under way until `end` is called. One that has
    /// to wait is not counted.
    std::chrono::seconds begin(const std::string& address, const std::string& user, Clock::time_point now);

    enum class Outcome : std::uint8_t { granted, refused, unknown };
    void end(const std::string& address, const std::string& user, Outcome outcome, Clock::time_point now);

private:
    enum class Count : std::uint8_t { pair, address, user };
    using Key = std::tuple<Count, std::string, std::string>; // address, user; empty where they do not count
    struct Record {
        unsigned refusals = 0;
        unsigned under_way = 0;
        bool has_logged_in = false;
        Clock::time_point next{}; ///< when the next attempt is admitted
        Clock::time_point last{}; ///< of the latest attempt
    };

    static Key pair_key(const std::string& address, const std::string& user);
    static Key address_key(const std::string& address);
    static Key user_key(const std::string& user);
    void make_room(Clock::time_point now);

    std::map<Key, Record> records_;
};

} // namespace xpon::gateway
