// Whichever call of the file system or of LMDB fails once: the operation has an error with a cause and has changed
// nothing, or it has done its work all the same, and the next try works.

#include "cfgdb/saved_file.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"
#include "tests/unit/platform/cfgdb/failing_calls.hpp"
#include "tests/unit/platform/cfgdb/other_release.hpp"
#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/peer_side/configuration_file.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <functional>
#include <optional>

#include <gmock/gmock.h>

namespace xpon::cfgdb {
namespace {

constexpr const char* save_path = "/configuration/save-config";

class FailingCalls : public testing::Test {
protected:
    FailingCalls() {
        set_database_log(logger_);
        prepare();
    }
    ~FailingCalls() override {
        set_database_log(nullptr);
    }

    /// "saved" in both saved files, "runs" in running, "pending" in the candidate, one ONT in all of them.
    void prepare() {
        client_.reset();
        std::filesystem::remove_all(root_.path() / "run");
        std::filesystem::remove_all(root_.path() / "configuration");
        client_.emplace("TEST");
        test::apply(*client_,
                    {test::edit_hostname("saved"), test::edit_ont(1, 1, R"({"serial":[1,1,1,1,1,1,1,1,0,0]})")});
        ASSERT_EQ(test::commit(*client_), "");
        ASSERT_EQ(save_running_configuration(client_->handle(), save_path), 0);
        ASSERT_EQ(save_running_configuration(client_->handle(), save_path), 0);
        test::apply(*client_, {test::edit_hostname("runs")});
        ASSERT_EQ(test::commit(*client_), "");
        test::apply(*client_, {test::edit_hostname("pending"), test::edit_ont(1, 1, R"({"serial":[1,1,1,1,1,1,1,1,0,0],
            "description":"pending"})")});
    }

    /// The stores and the files, as one text.
    std::string state() {
        if (!client_) {
            client_.emplace("TEST");
        }
        return test::hostname(*client_) + " " + test::hostname(*client_, Store::candidate) + " " +
               test::stored<PonOnt>(*client_, Store::candidate).description + "\n" + root_.read(save_path + 1) +
               root_.read(std::string(save_path + 1) + ".previous");
    }

    /// `operation` gives "" or the cause of its failure.
    void sweep(const std::function<std::string()>& operation) {
        const auto before = state();
        ASSERT_EQ(operation(), "");
        sweep([this] { prepare(); }, operation, before, state());
    }

    void sweep(const std::function<void()>& make_ready, const std::function<std::string()>& operation,
               const std::string& before, const std::string& after) {
        for (int nth = 1;; ++nth) {
            ASSERT_LT(nth, 5000);
            make_ready();
            std::string cause;
            {
                const test::FailingCall call(nth);
                cause = operation();
            }
            const std::string failed = test::FailingCall::failed() == nullptr ? "" : test::FailingCall::failed();
            const auto where = failed + ", call " + std::to_string(nth) + ": " + cause;
            ASSERT_EQ(state(), cause.empty() ? after : before) << where;
            if (!cause.empty()) { // also of a call that a child made
                ASSERT_EQ(operation(), "") << where;
                ASSERT_EQ(state(), after) << where;
            } else if (failed.empty()) {
                return;
            }
            ASSERT_FALSE(std::filesystem::exists(root_.path() / "configuration/save-config.new")) << where;
        }
    }

    /// A start of the program, on what `end` leaves of the database. One that fails changes nothing, and the next one,
    /// which looks, does its work.
    void sweep_start(const std::function<void()>& end) {
        const auto make_ready = [&] {
            prepare();
            end();
            client_.reset();
        };
        const auto start = [&]() -> std::string {
            try {
                client_.reset();
                client_.emplace("TEST");
                return "";
            } catch (const std::exception& fault) {
                return fault.what();
            }
        };
        make_ready();
        ASSERT_EQ(start(), "");
        const auto after = state();
        sweep(make_ready, start, after, after);
    }

    std::shared_ptr<test::RecordingLogger> logger_ = std::make_shared<test::RecordingLogger>();
    test::TemporaryOltRoot root_;
    std::optional<CfgDbWrapper> client_;
};

std::string outcome(int status) {
    return status == 0 ? "" : std::generic_category().message(errno);
}

TEST_F(FailingCalls, InASet) {
    GSystemHostname record{.hostname = "set"};
    sweep([&] { return outcome(setDb_CommonGCfg_hostname(client_->handle(), client_->context(), &record, nullptr)); });
}

TEST_F(FailingCalls, InACommit) {
    sweep([&]() -> std::string {
        const auto result = client_->commit(nullptr);
        return result.has_value() ? "" : result.error().info->message;
    });
}

TEST_F(FailingCalls, InASave) {
    sweep([&] { return outcome(save_running_configuration(client_->handle(), save_path)); });
}

TEST_F(FailingCalls, InAStartWithTheDatabaseThatIsThere) {
    sweep_start([] {});
}

TEST_F(FailingCalls, InAStartWithTheSavedConfiguration) {
    sweep_start([&] {
        client_.reset();
        std::filesystem::remove_all(root_.path() / "run");
    });
}

TEST_F(FailingCalls, InAStartWithTheDatabaseOfAnotherRelease) {
    sweep_start([&] {
        const test::OtherRelease other(test::widen_description);
        other.take_over(test::database_of(*client_), [](cJSON&) {});
    });
}

} // namespace
} // namespace xpon::cfgdb
