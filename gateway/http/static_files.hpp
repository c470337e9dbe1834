#pragma once

#include "gateway/http/message.hpp"
#include "xpon/core/unique_fd.hpp"

#include <string>

namespace xpon::gateway {

/// The files of one folder, read anew for each request. Nothing outside of it is reached, neither by the path nor
/// through a symbolic link.
class StaticFiles {
public:
    /// A folder that is missing has no files, until it is there.
    explicit StaticFiles(std::string folder) : folder_(std::move(folder)) {}

    /// The answer to a GET or HEAD. A path without a dot in its last part is one of the page's own places: the page is
    /// what it gets. With NAME.br or NAME.gz beside it, the file NAME goes out compressed to those who take it so.
    [[nodiscard]] HttpResponse get(const HttpRequest& request) const;

private:
    std::string folder_;
};

} // namespace xpon::gateway
