#pragma once

#include "cfgdb/element.hpp"

#include <span>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace xpon::cfgdb {

/// "configuration.", the element's path, and the numbers of the record from 1: "configuration.ZebGCfg.pon.ont.3.17".
std::string path_of(const RecordId& id);

/// A record as it must not run, and why.
struct Fault {
    RecordId where;
    std::string text;
};

/// What the checks of one commit have against it, in the order found.
class Faults {
public:
    template <class... Args>
    void add(const RecordId& where, fmt::format_string<Args...> text, Args&&... args) {
        faults_.push_back({where, fmt::format(text, std::forward<Args>(args)...)});
    }

    [[nodiscard]] bool empty() const {
        return faults_.empty();
    }

    [[nodiscard]] std::span<const Fault> all() const {
        return faults_;
    }

    /// "PATH: TEXT" of the first fault, with the number of the others, which are logged.
    [[nodiscard]] std::string report() const;

private:
    std::vector<Fault> faults_;
};

} // namespace xpon::cfgdb
