#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace xpon::test {

/// A number that the environment may give, such as TORTURE_SEED.
inline int number_from_environment(const char* name, int otherwise) {
    const char* const text = std::getenv(name);
    return text == nullptr ? otherwise : std::atoi(text);
}

/// Runs `round(number)`, from 0, as often as the environment's TORTURE_ROUNDS says, else 20 times; a line on standard
/// error tells how far it is. Ends with the first round that fails.
template <class Round>
void repeat(const Round& round) {
    const int rounds = number_from_environment("TORTURE_ROUNDS", 20);
    ASSERT_GT(rounds, 0) << "TORTURE_ROUNDS";
    for (int number = 0; number < rounds; ++number) {
        round(number);
        ASSERT_FALSE(testing::Test::HasFailure()) << "in round " << number;
        if ((number + 1) % 50 == 0) {
            std::fprintf(stderr, "%d of %d rounds\n", number + 1, rounds);
        }
    }
}

} // namespace xpon::test
