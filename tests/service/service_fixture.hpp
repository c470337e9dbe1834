#pragma once

#include "api_service/api_service.hpp"
#include "tests/service/doubles.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "xpon/client/connection.hpp"

#include <memory>
#include <optional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace xpon::test {

/// The daemon in this process, with a thread of its own, behind a Unix socket. Only PAM and the peers are doubles.
class ServiceTest : public testing::Test {
protected:
    ServiceTest();
    ~ServiceTest() override;

    /// The answer to one frame, without its indentation.
    std::string ask(const std::string& frame);
    /// The answer as it comes.
    std::string exchange(const std::string& frame);
    /// The same; empty when the service closed the connection instead. Then there is a new one.
    std::optional<std::string> exchange_or_close(const std::string& frame);
    /// The id of a new session.
    std::string log_in(const std::string& user);
    /// What has been logged so far; empties the log.
    std::vector<std::string> take_log();

    TemporaryOltRoot root;
    std::shared_ptr<RecordingLogger> logger = std::make_shared<RecordingLogger>();
    std::shared_ptr<FakePeers> peers = std::make_shared<FakePeers>();
    std::shared_ptr<FakePam> pam = std::make_shared<FakePam>();
    api_service::ApiService service;
    std::thread thread;
    client::Connection connection;
};

/// How often `text` stands in `whole`.
std::size_t occurrences(const std::string& whole, const std::string& text);
/// The refusal that every route gives to a caller without enough rights, in the session `id`.
std::string access_denied(const std::string& id);
/// The answer to a request that could not be processed.
std::string not_processed(const std::string& path, const std::string& id = "");

} // namespace xpon::test
