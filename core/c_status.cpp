#include "xpon/core/c_status.hpp"

namespace xpon::core {

Result<void> check_c_status(LoggerAt log, int status) {
    const int cause = std::exchange(errno, 0);
    if (status == 0) {
        return success();
    }
    auto text = cause != 0 ? fmt::format("C API function returned {:d}, errno={:d}", status, cause)
                           : fmt::format("C API function returned {:d}", status);
    log_error(log.logger, "{}", text);
    return ErrorPayload(Error::ErrorCApi, std::move(text), log.location);
}

} // namespace xpon::core
