#include "xpon/custom_layer/configuration.h"

#include "custom_layer/peer_request.hpp"
#include "xpon/peer_side/configuration_file.hpp"

int custom_layer__configuration_save(Ipc* ipc, const void* db, int, const char* path) {
    using namespace xpon::custom_layer;
    if (ipc != nullptr && order(ipc, xpon::peer_side::Operation::save_configuration, no_question()) != 0) {
        return -1;
    }
    return xpon::cfgdb::save_running_configuration(db, path);
}

int custom_layer__configuration_set_default(const void* db, int) {
    return xpon::cfgdb::set_candidate_to_factory(db);
}
