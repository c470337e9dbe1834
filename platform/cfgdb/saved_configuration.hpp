#pragma once

#include "cfgdb/records.hpp"
#include "cfgdb/start_report.hpp"
#include "xpon/core/result.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace xpon::cfgdb {

/// Records of a configuration that does not run yet.
using RecordList = std::vector<std::pair<RecordId, std::vector<std::byte>>>;

/// The running configuration as the text of a saved file:
/// {"format":"olt-config","version":1,"crc32":N,"records":{...}}. Records are keyed by the suffix of their element,
/// those of tables below it by their numbers from 1 ("17", "17.2"); only what differs from the factory state is there.
/// The checksum is that of the unformatted print of "records".
std::string print_saved_configuration(const Records& records);

/// The reverse. Each record is one that a client could have set: what another release wrote and does not fit is left
/// out or takes its default, and the report says so. The message of an error says why the file is none or damaged.
core::Result<RecordList> parse_saved_configuration(std::string_view text, StartReport& report);

/// Whether the text is a saved file as it was written, whatever release wrote it.
bool is_intact(std::string_view text);

} // namespace xpon::cfgdb
