#pragma once

#include "gateway/http/message.hpp"
#include "xpon/core/unique_fd.hpp"

#include <chrono>
#include <cstddef>
#include <string>
#include <utility>

namespace xpon::gateway {

/// One line for each request that was answered: time, address, user, method and path, the path that the daemon was
/// asked for, status, bytes and time taken. Never a query, a header, a body or an id.
/// A reader of standard output that is stuck costs lines, which are counted, and holds nobody up.
class AccessLog {
public:
    /// `file`: "" for standard output. Throws std::system_error when it cannot be opened.
    explicit AccessLog(std::string file);

    void write(const HttpRequest& request, const HttpResponse& response, std::size_t bytes,
               std::chrono::steady_clock::duration taken);
    /// Goes on in a new file, when the old one has been moved away. One that cannot be opened changes nothing.
    void reopen();

private:
    std::string name_;
    core::UniqueFd file_; // none for standard output
    unsigned lost_ = 0;   // lines, since the last one that was written
};

} // namespace xpon::gateway
