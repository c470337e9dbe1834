#pragma once

#include "client/oltctl/configuration/records.hpp"

#include <string>
#include <vector>

namespace xpon::oltctl {

/// One field that candidate and running have different. Values are JSON texts; empty where there is none.
struct FieldDifference {
    std::string element;
    std::string index; ///< "3/17/2", or empty
    std::string field; ///< key path with array positions from 0, such as "servers.1.address"
    std::string running;
    std::string candidate;
};

/// The records of an element that candidate and running have different: the same indices on both sides.
struct DifferingRecords {
    const Element* element;
    ConfigurationAccess::Read running;
    ConfigurationAccess::Read candidate;
};
/// Those of all elements that have any.
std::vector<DifferingRecords> differing_records(Service& service, ConfigurationAccess& access);

/// Their fields, by element, index and key path.
std::vector<FieldDifference> differences(const std::vector<DifferingRecords>& records);

/// For people: a line for each record, below it one for each field.
std::string text_of(const std::vector<FieldDifference>& differences);
/// For programs: an array of objects with the members of FieldDifference.
std::string json_of(const std::vector<FieldDifference>& differences);

} // namespace xpon::oltctl
