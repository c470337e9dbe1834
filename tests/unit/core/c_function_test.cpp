#include "xpon/core/c_function.hpp"

#include <stdexcept>

#include <gtest/gtest.h>

namespace xpon::core {
namespace {

TEST(CFunction, FailsWithWhatItsBodyThrows) {
    const std::pair<void (*)(), int> cases[] = {
        {[] { fail_with(ERANGE); }, ERANGE},
        {[] { throw std::bad_alloc(); }, ENOMEM},
        {[] { throw std::runtime_error("fault"); }, EIO},
        {[] { throw 7; }, EIO},
    };
    for (const auto& [body, cause] : cases) {
        EXPECT_EQ(c_function(body), -1);
        EXPECT_EQ(errno, cause);
        int value = 9;
        EXPECT_EQ(c_function(&value, [&] { return body(), 8; }), -1);
        EXPECT_EQ(errno, cause);
        EXPECT_EQ(value, 0);
    }
    int value = 0;
    EXPECT_EQ(c_function(&value, [] { return 8; }), 0);
    EXPECT_EQ(value, 8);
    EXPECT_EQ(c_function(static_cast<int*>(nullptr), [] { return 8; }), -1);
    EXPECT_EQ(errno, EINVAL);
}

} // namespace
} // namespace xpon::core
