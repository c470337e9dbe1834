#pragma once

#include "client/oltctl/configuration/difference.hpp"
#include "client/oltctl/configuration/records.hpp"

#include <string>
#include <vector>

namespace xpon::oltctl {

/// The whole configuration as one JSON document: an object by the elements' paths. An element without indices is its
/// record; one with indices an object of records by the lists that they stand for, such as "1-16/2-256", equal records
/// once. Records that are not in a document are not touched by it.
std::string export_document(ConfigurationAccess& access, const char* type);

/// The same of one side of the records that differ: `&DifferingRecords::running` or `candidate`.
std::string document_of(const std::vector<DifferingRecords>& records,
                        ConfigurationAccess::Read DifferingRecords::* side);

struct Imported {
    std::size_t changed = 0;  ///< records that were written into the candidate
    std::size_t requests = 0; ///< that this took
};

/// Makes the candidate what the document says. The whole document is read before anything is written. Failure (usage)
/// for a text that is no such document, Failure (refused) with what was wrong with a record.
Imported import_document(ConfigurationAccess& access, const std::string& text);

} // namespace xpon::oltctl
