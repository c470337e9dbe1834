#include "xpon/cfgdb/cfgdb_wrapper.hpp"

#include "cfgdb/change_notice.hpp"
#include "cfgdb/database.hpp"
#include "xpon/core/guard.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <system_error>

namespace xpon::cfgdb {
namespace {

int next_context() {
    static int last = 0;
    return ++last;
}

/// What a client is told of a fault of the database: its cause, in the form "PATH: TEXT" of refusals.
std::string text_of(const std::system_error& fault) {
    const auto& code = fault.code();
    return code == std::errc::timed_out ? "configuration: Another process keeps the database locked"
                                        : "configuration: " + code.message();
}

/// A fault of the database becomes an error of code CommonError; any other exception is for the guard.
template <class Step>
std::invoke_result_t<Step> database_step(Step&& step,
                                         const std::source_location& where = std::source_location::current()) {
    return core::guarded(
        database_log(),
        [&]() -> std::invoke_result_t<Step> {
            try {
                return step();
            } catch (const std::system_error& fault) {
                core::log_error(database_log(), "Configuration database: {}", fault.what());
                return core::ErrorPayload(core::Error::CommonError, text_of(fault), where);
            }
        },
        core::exception_text, where);
}

} // namespace

CfgDbWrapper::CfgDbWrapper(const std::string& client_name)
    : database_(Database::shared()), client_name_(client_name), context_(next_context()) {}

CfgDbWrapper::~CfgDbWrapper() = default;

core::Result<User_record> CfgDbWrapper::find_user_by_username(const std::string& name) const {
    return database_step([&]() -> core::Result<User_record> {
        if (const auto user = database_->find_user(name)) {
            return *user;
        }
        return core::ErrorPayload(core::Error::Empty, "User not found");
    });
}

core::Result<void> CfgDbWrapper::commit(const std::shared_ptr<ipc::IIpc>& ipc) {
    Database::Acceptance accept;
    if (ipc != nullptr) {
        accept = [&](std::span<const RecordId> changes) { return ask_for_acceptance(ipc.get(), changes); };
    }
    BOOST_OUTCOME_TRY(const auto number,
                      database_step([&] { return database_->commit(accept, address_of(ipc.get())); }));
    // The commit has happened: nothing that goes wrong from here on makes it fail.
    const auto told = database_step([&]() -> core::Result<void> {
        send_change_notice(ipc.get(), number);
        return core::success();
    });
    if (told.has_error()) {
        core::log_error(database_log(), "{}: peers were not told of a commit: {}", client_name_,
                        told.error().to_string());
    }
    return core::success();
}

core::Result<void> CfgDbWrapper::rollback() {
    return database_step([&]() -> core::Result<void> {
        database_->rollback();
        return core::success();
    });
}

const void* CfgDbWrapper::handle() const {
    return database_.get();
}

int CfgDbWrapper::context() const {
    return context_;
}

} // namespace xpon::cfgdb
