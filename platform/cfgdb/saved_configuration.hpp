#pragma once

#include "cfgdb/records.hpp"
#include "xpon/core/result.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace xpon::cfgdb {

/// The records of a saved file.
using SavedRecords = std::vector<std::pair<RecordId, std::vector<std::byte>>>;

/// The running configuration as the text of a saved file:
/// {"format":"olt-config","version":1,"crc32":N,"records":{...}}. Records are keyed by the suffix of their element,
/// those of tables below it by their numbers from 1 ("17", "17.2"); only what differs from the factory state is there.
/// The checksum is that of the unformatted print of "records".
std::string print_saved_configuration(const Records& records);

/// The reverse. The message of an error says what is wrong; every record is checked as if a client had set it.
core::Result<SavedRecords> parse_saved_configuration(std::string_view text);

} // namespace xpon::cfgdb
