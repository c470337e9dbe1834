#include "xpon/peer_side/configuration_file.hpp"

#include "cfgdb/database.hpp"
#include "xpon/core/c_function.hpp"
#include "xpon/peer_side/olt_root.hpp"

namespace xpon::cfgdb {

bool configuration_exists() {
    return Database::is_configured();
}

int save_running_configuration(const void* db, const char* path) {
    return core::c_function([&] {
        if (path == nullptr) {
            core::fail_with(EINVAL);
        }
        database_of(db).save(below_olt_root(path));
    });
}

int set_candidate_to_factory(const void* db) {
    return core::c_function([&] { database_of(db).set_candidate_to_factory(); });
}

int restart_from_saved_configuration(const void* db) {
    return core::c_function([&] { database_of(db).restart(); });
}

} // namespace xpon::cfgdb
