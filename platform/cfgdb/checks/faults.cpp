#include "cfgdb/checks/faults.hpp"

#include "cfgdb/ont_number.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <algorithm>

namespace xpon::cfgdb {

std::string path_of(const RecordId& id) {
    const auto& row = element(id.element);
    auto path = fmt::format("configuration.{}", row.path);
    const bool is_of_ont = id.element == element_of<PonOnt> || id.element == element_of<OntServices>;
    for (unsigned level = 0; level < row.depth; ++level) {
        if (level == 0 && is_of_ont) {
            const auto number = ont_number(id.indices[0]);
            path += fmt::format(".{}.{}", number.pon_port, number.ont);
        } else {
            path += fmt::format(".{}", id.indices[level] + 1);
        }
    }
    return path;
}

std::string Faults::report() const {
    constexpr std::size_t most_logged = 100;
    const auto line = [&](std::size_t i) { return fmt::format("{}: {}", path_of(faults_[i].where), faults_[i].text); };
    for (std::size_t i = 1; i < std::min(faults_.size(), most_logged); ++i) {
        core::log(database_log(), core::LogLevel::Warning, "Commit refused: {}", line(i));
    }
    return faults_.size() == 1 ? line(0) : fmt::format("{} (and {} more)", line(0), faults_.size() - 1);
}

} // namespace xpon::cfgdb
