#pragma once

#include <stdexcept>
#include <string>

namespace xpon::oltctl {

/// What the program ends with. Scripts rely on the numbers.
enum class ExitStatus {
    done = 0,
    refused = 1, ///< by the service, or by the person who was asked
    usage = 2,
    no_session = 3,    ///< not logged in, or the session has expired
    no_connection = 4, ///< to the service
};

/// Ends a command. The text says what is wrong and, where that is known, what to do next.
class Failure : public std::runtime_error {
public:
    Failure(ExitStatus status, const std::string& text) : std::runtime_error(text), status_(status) {}

    [[nodiscard]] ExitStatus status() const {
        return status_;
    }

private:
    ExitStatus status_;
};

} // namespace xpon::oltctl
