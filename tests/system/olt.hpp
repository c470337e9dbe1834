#pragma once

#include "tests/support/process.hpp"
#include "tests/system/notify_socket.hpp"
#include "xpon/client/client.hpp"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace xpon::test {

inline const std::string starting_up = "STATUS=Startup web manager...";
inline const std::string ready = "READY=1\nSTATUS=Processing requests...\nWATCHDOG=1\n";
inline const std::string shutting_down = "STATUS=Shutdown api-service...\nSTOPPING=1\n";

/// A short folder below /tmp, laid out as scripts/run does it, and gone with the object.
class OltFolder {
public:
    OltFolder();
    OltFolder(const OltFolder&) = delete;
    OltFolder& operator=(const OltFolder&) = delete;
    ~OltFolder();

    [[nodiscard]] const std::filesystem::path& path() const {
        return path_;
    }

private:
    std::filesystem::path path_;
};

/// One OLT of real processes in a folder of its own: the simulator and the daemon, each started when asked for.
class Olt {
public:
    Olt();

    [[nodiscard]] const std::filesystem::path& root() const {
        return folder_.path();
    }

    /// Fails the test when the simulator does not become ready.
    void start_simulator(const std::vector<std::string>& options = {});
    void start_daemon(const std::string& program = API_SERVICE);
    /// Starts both and waits until the daemon takes requests.
    void start(const std::vector<std::string>& simulator_options = {});
    /// Waits until the daemon has said that it is ready and takes connections.
    void wait_until_ready();

    /// The daemon's next words to its service manager, "" when none come.
    std::string next_notification();
    /// What the daemon says from now on until it ends.
    std::vector<std::string> notifications_until_end();

    Process& simulator() {
        return *simulator_;
    }
    Process& daemon() {
        return *daemon_;
    }

    /// A connected client; fails the test when the daemon takes no connection.
    static client::Client connect();
    /// The same, logged in with the user's name as password.
    static client::Client log_in(const std::string& user);

    /// Where the daemon's PAM service file lies.
    [[nodiscard]] std::filesystem::path pam_folder() const {
        return root() / "etc/pam.d";
    }

private:
    OltFolder folder_;
    std::unique_ptr<NotifySocket> notify_;
    std::unique_ptr<Process> simulator_;
    std::unique_ptr<Process> daemon_;
};

std::string read_file(const std::filesystem::path& path);

/// Whether the daemon grants the login.
bool logs_in(client::Client& client, const std::string& user, const std::string& password);
/// The answer to `request` without layout: `{"success":true,"session_id":"1"}`.
std::string ask(client::Client& client, const std::string& request);
/// `ask` with the client's session id put into the request.
std::string ask_in_session(client::Client& client, const std::string& request_without_session);

} // namespace xpon::test
