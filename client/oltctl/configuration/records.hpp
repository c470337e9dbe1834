#pragma once

#include "client/oltctl/configuration/elements.hpp"
#include "client/oltctl/configuration/index_list.hpp"
#include "client/oltctl/service.hpp"
#include "xpon/core/json_tree.hpp"

#include <map>
#include <string>
#include <vector>

namespace xpon::oltctl {

/// Records of one element by their indices. They point into trees that somebody else owns.
using Records = std::map<Index, const cJSON*>;

/// Reads and writes records through the service. Failures are those of Service.
class ConfigurationAccess {
public:
    explicit ConfigurationAccess(Service& service) : service_(service) {}

    /// The lists that stand for all records of the element on this board.
    std::vector<std::string> all_indices(const Element& element);
    /// The request for all of its records; `type`: "candidate" or "running".
    client::Request request_for_all(const Element& element, const char* type);

    /// All records of the element, in the tree that the answer was.
    struct Read {
        core::JsonTree tree;
        Records records;
    };
    Read read_all(const Element& element, const char* type);
    /// Takes the answer to such a request apart.
    Read records_of(const Element& element, const std::string& answer);

    /// Writes records into the candidate, equal ones in as few requests as possible. How many requests that took.
    std::size_t write(const Element& element, const Records& records);

private:
    Service& service_;
    core::JsonTree constants_;
};

/// Whether two records say the same, in whatever order.
bool is_equal(const cJSON* left, const cJSON* right);

} // namespace xpon::oltctl
