#include "api_service/auth/pam_session.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"

#include <cstdlib>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <security/_pam_types.h>

namespace xpon::api_service {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The wrapper reads its folder once, so each case needs a process of its own.
class Pam : public testing::Test {
protected:
    Pam() {
        setenv("PAM_WRAPPER_SERVICE_DIR", (root.path() / "pam.d").c_str(), 1);
        root.write("users", "admin:right:api_service\nnobody::api_service\n");
    }

    void use_stack(const std::string& authentication, const std::string& session) {
        root.write("pam.d/api_service",
                   fmt::format("auth required {}\nsession required {}\n", authentication, session));
    }

    test::TemporaryOltRoot root;
    const std::string matrix = fmt::format(PAM_MATRIX_MODULE " passdb={}", (root.path() / "users").string());
    std::shared_ptr<test::RecordingLogger> logger = std::make_shared<test::RecordingLogger>();
    PamApi pam{logger};
};

TEST_F(Pam, password) {
    use_stack(matrix, matrix);
    {
        const auto session = pam.open_session("admin", "right");
        ASSERT_TRUE(session);
        EXPECT_THAT(logger->texts(), IsEmpty());
    }
    EXPECT_THAT(logger->texts(), IsEmpty()) << "closing";

    for (const char* password : {"wrong", "", "righ", "right "}) {
        const auto refused = pam.open_session("admin", password);
        EXPECT_EQ(refused.error().code, Error::NoAccess);
        EXPECT_EQ(refused.error().info->message, "Invalid credentials");
    }
    EXPECT_TRUE(logger->contains(fmt::format("pam_authenticate() failed: {}", PAM_AUTH_ERR)));
}

TEST_F(Pam, two_questions) {
    use_stack(TWO_QUESTIONS_MODULE, matrix);
    EXPECT_EQ(pam.open_session("admin", "right").error().code, Error::NoAccess);
    EXPECT_TRUE(logger->contains("Num_msg is 2, should be 1"));
    EXPECT_TRUE(logger->contains(fmt::format("pam_authenticate() failed: {}", PAM_CONV_ERR)));
}

TEST_F(Pam, failing_session) {
    use_stack(matrix, "pam_deny.so");
    EXPECT_EQ(pam.open_session("admin", "right").error().code, Error::CommonError);
    EXPECT_THAT(logger->texts(), ElementsAre(fmt::format("pam_open_session() failed: {}", PAM_SESSION_ERR),
                                             "pam_close_session() failed: %d"));
}

} // namespace
} // namespace xpon::api_service
