#include "custom_layer/own_connection.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/core/c_function.hpp"
#include "xpon/core/guard.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/logger/logger.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <cerrno>
#include <memory>
#include <utility>

namespace {

using xpon::cfgdb::CfgDbWrapper;

/// Writes to a category that zlog gave out.
class CategoryLogger : public xpon::logger::Logger {
public:
    explicit CategoryLogger(zlog_category_s* category) : Logger(category) {}
};

/// The layer's own client of the configuration database, from one initialisation to the next. Its place is made
/// after the first client, and so is gone before what the database keeps for the process.
void keep(std::unique_ptr<CfgDbWrapper> client) {
    static std::unique_ptr<CfgDbWrapper> kept;
    kept = std::move(client);
}

bool has_client = false;

xpon::core::Result<void> open_database() {
    if (has_client) {
        // A service that starts again finds the database as it is now, not as it was left open.
        keep(nullptr);
    }
    keep(std::make_unique<CfgDbWrapper>("custom-layer"));
    has_client = true;
    return xpon::core::success();
}

} // namespace

int custom_layer__init(zlog_category_s* category) {
    using namespace xpon;

    return core::c_function([&] {
        if (category == nullptr) {
            core::fail_with(EINVAL);
        }
        const auto logger = std::make_shared<CategoryLogger>(category);
        cfgdb::set_database_log(logger);
        custom_layer::renew_own_connection(logger);
        custom_layer::own_connection();
        if (!core::guarded(*logger, open_database)) {
            core::fail_with(EIO);
        }
    });
}
