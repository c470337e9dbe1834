#pragma once

#include "client/oltctl/confirmation/unconfirmed_commit.hpp"
#include "client/oltctl/service.hpp"

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace xpon::oltctl {

/// Puts the configuration of before a commit into force again: the records that it changed, and nothing that somebody
/// is editing at present. That stands in the candidate again afterwards, also when it took several attempts.
class Restoration {
public:
    Restoration(UnconfirmedCommit commit, std::chrono::milliseconds patience)
        : commit_(std::move(commit)), patience_(patience) {}

    /// Does nothing where the configuration of before runs already. Failure (no_session) when the service knows neither
    /// the session of the commit nor the one that is kept at present.
    void attempt();

private:
    void attempt(Service& service);

    UnconfirmedCommit commit_;
    std::chrono::milliseconds patience_;
    std::vector<std::string> edits_; ///< documents of what was taken out of the candidate and has to return
};

} // namespace xpon::oltctl
