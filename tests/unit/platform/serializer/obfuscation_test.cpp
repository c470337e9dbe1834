#include "xpon/obfuscation/obfuscation.h"

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::string obfuscated(const std::string& text) {
    std::string form(calculate_valid_size(text.c_str()), 'x');
    EXPECT_EQ(text_obfuscate(text.c_str(), form.data()), 0);
    EXPECT_EQ(form.size(), std::string(form.c_str()).size() + 1);
    return form.c_str();
}

// The fuzzer of the obfuscation judges every other text.
TEST(Obfuscation, HasAFixedForm) {
    EXPECT_EQ(obfuscated(""), "$ob1$AAAAAA");
    EXPECT_EQ(obfuscated("secret"), "$ob1$XKLo5fQGMc5pbQ");
    char text[32];
    EXPECT_EQ(text_deobfuscate("$ob1$XKLo5fQGMc5pbQ", text), 0);
    EXPECT_STREQ(text, "secret");
    const std::string too_long(1025, 'x');
    std::string form(calculate_valid_size(too_long.c_str()), 'x');
    EXPECT_EQ(text_obfuscate(too_long.c_str(), form.data()), -1);
    EXPECT_EQ(errno, EMSGSIZE);
}

TEST(Obfuscation, RefusesWhatItDidNotMake) {
    const std::vector<std::pair<std::string, int>> cases{
        {"secret", EINVAL},      {"$ob2$AAAAAA", ENOTSUP}, {"$ob1$", EINVAL},        {"$ob1$AAAAA", EINVAL},
        {"$ob1$AAAAAB", EINVAL}, {"$ob1$AAAA=A", EINVAL},  {"$ob1$6Le-Q01", EINVAL}, {"$ob1$AAAAAAA", EBADMSG}};
    for (const auto& [form, cause] : cases) {
        std::string text(form.size() + 1, 'x');
        errno = 0;
        EXPECT_EQ(text_deobfuscate(form.c_str(), text.data()), -1) << form;
        EXPECT_EQ(errno, cause) << form;
    }
}

} // namespace
