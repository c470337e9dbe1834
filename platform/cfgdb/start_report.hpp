#pragma once

#include "cfgdb/element.hpp"
#include "cfgdb/transaction.hpp"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace xpon::cfgdb {

/// What became of the configuration when the database was filled: which one runs, why, and what of it was left out.
/// The database keeps it, because the process that fills it may not be the one whose log is read.
class StartReport {
public:
    /// What runs now and why; the last one counts.
    void set_outcome(std::string text) {
        outcome_ = std::move(text);
    }
    /// Something that did not go as it should.
    void add(std::string text);
    /// The same for a record. Equal texts about records of one element become one line.
    void add(const RecordId& id, const std::string& text);
    void append(const StartReport& other);

    [[nodiscard]] bool empty() const {
        return lines_.empty();
    }

    /// Leaves the report in the database, with the present time.
    void store(WriteTransaction& transaction) const;
    /// Writes the lines to the log of this process, and, when something did not go as it should, to configuration.log
    /// in the folder of the logs.
    void tell() const;

private:
    struct Line {
        std::string text;
        std::size_t more = 0; ///< further records with the same text
    };

    [[nodiscard]] std::vector<std::string> lines() const;
    void write_log_file() const;

    std::string outcome_;
    std::vector<Line> lines_;
    std::map<std::pair<ElementId, std::string>, std::size_t> line_of_text_;
    std::size_t unwritten_ = 0;
};

/// Writes the report of the process that filled the database to the log of this one.
void tell_stored_report(const Transaction& transaction);

/// "ZebGCfg_pon_ont 17", as saved files have it.
std::string name_of(const RecordId& id);

/// The key of a record within its element: "17", "17.2"; empty for an element of depth 0.
std::string key_of(const RecordId& id);

} // namespace xpon::cfgdb
