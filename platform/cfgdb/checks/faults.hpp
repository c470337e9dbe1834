#pragma once

#include "cfgdb/element.hpp"

#include <string>
#include <vector>

#include <fmt/format.h>

namespace xpon::cfgdb {

/// "configuration.", the element's path, and the numbers of the record from 1: "configuration.ZebGCfg.pon.ont.3.17".
std::string path_of(const RecordId& id);

/// What the checks of one commit have against it, in the order found.
class Faults {
public:
    template <class... Args>
    void add(const RecordId& where, fmt::format_string<Args...> text, Args&&... args) {
        texts_.push_back(path_of(where) + ": " + fmt::format(text, std::forward<Args>(args)...));
    }

    [[nodiscard]] bool empty() const {
        return texts_.empty();
    }

    /// "PATH: TEXT" of the first fault, with the number of the others, which are logged.
    [[nodiscard]] std::string report() const;

private:
    std::vector<std::string> texts_;
};

} // namespace xpon::cfgdb
