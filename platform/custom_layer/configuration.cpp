#include "xpon/custom_layer/configuration.h"

#include "xpon/cfgdb/configuration_file.hpp"

int custom_layer__configuration_save(Ipc*, const void* db, int, const char* path) {
    return xpon::cfgdb::save_running_configuration(db, path);
}

int custom_layer__configuration_set_default(const void* db, int) {
    return xpon::cfgdb::set_candidate_to_factory(db);
}
