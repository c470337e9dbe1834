#pragma once

#include <string>

namespace xpon::simulator {

/// Makes the configured host name what uname(2) tells every process of the UTS namespace that this one is in.
class HostName {
public:
    /// Throws std::runtime_error, which says what to do, when that is the machine's own namespace: its name is not the
    /// simulation's to change. Does nothing, ever, unless it `is_applied`.
    explicit HostName(bool is_applied);

    /// Throws std::system_error.
    void follow(const std::string& configured);

private:
    bool is_applied_;
    std::string last_;
};

} // namespace xpon::simulator
