#pragma once

#include "client/oltctl/live/history.hpp"
#include "client/oltctl/live/live_view.hpp"
#include "client/oltctl/live/values.hpp"
#include "xpon/client/message.hpp"

#include <string>
#include <unordered_map>
#include <vector>

namespace xpon::oltctl {

/// The answer to one request, value by value. Counters have their rate and its sparkline beside them, other numbers one
/// of their own once they have moved; what has changed since the reading before is highlighted.
class WatchView : public LiveView {
public:
    WatchView(client::Request request, std::string title);

    void sample(Service& service) override;
    [[nodiscard]] std::vector<Line> head(std::size_t columns) const override;
    [[nodiscard]] std::vector<Line> body(std::size_t columns) const override;

    /// A line for each value that is new or has changed with the last sample, for a reader that is no terminal.
    [[nodiscard]] std::string changes() const;
    /// The answer in one line.
    [[nodiscard]] const std::string& json() const {
        return json_;
    }

private:
    struct Known {
        std::string text;
        bool has_changed = false;
        Rate rate;
        History history;
    };

    client::Request request_;
    std::string title_;
    bool has_counters_;
    std::string json_;
    std::vector<Value> values_;
    std::unordered_map<std::string, Known> known_; ///< by place
    unsigned samples_ = 0;
};

} // namespace xpon::oltctl
