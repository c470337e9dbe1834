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

/// All of them, by element, index and field.
std::vector<FieldDifference> differences(Service& service, ConfigurationAccess& access);

/// For people: a line for each record, below it one for each field.
std::string text_of(const std::vector<FieldDifference>& differences);
/// For programs: an array of objects with the members of FieldDifference.
std::string json_of(const std::vector<FieldDifference>& differences);

} // namespace xpon::oltctl
