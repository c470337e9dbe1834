#pragma once

#include "client/oltctl/configuration/difference.hpp"

#include <istream>
#include <string>
#include <vector>

namespace xpon::oltctl {

/// Who else has written records that a commit would put into force.
struct OtherAuthor {
    std::string session;
    std::string user; ///< who logged in; empty when the log does not reach back to it
    std::string time; ///< of the last writing
    std::string what; ///< path and indices of it

    bool operator==(const OtherAuthor&) const = default;
};

/// The authors that the service's log of changes names, one for each session but `own`, by their last writing since the
/// candidate was last what runs.
std::vector<OtherAuthor> other_authors(std::istream& log, const std::vector<DifferingRecords>& changes,
                                       const std::string& own);

/// For people, of the log of the service on this machine: a line for each, or that there is no log to read.
std::string text_of_other_authors(const std::vector<DifferingRecords>& changes, const std::string& own);

} // namespace xpon::oltctl
