#include "api_service/handlers/monitoring/log_files_handler.hpp"

#include "api_service/handlers/library_buffers.hpp"
#include "api_service/protocol/json_building.hpp"
#include "xpon/custom_layer/log_files.h"

namespace xpon::api_service {
namespace {

/// The one owner of an array of names and of each name, all blocks of their own.
struct NameList {
    NameList() = default;
    NameList(const NameList&) = delete;
    NameList& operator=(const NameList&) = delete;
    ~NameList() {
        for (char* name : all()) {
            FreeDeleter()(name);
        }
        FreeDeleter()(names);
    }

    [[nodiscard]] std::span<char*> all() const {
        return {names, names == nullptr ? 0 : count};
    }

    char** names = nullptr;
    std::uint32_t count = 0;
};

constexpr Member answer_members[] = {{"log_files", &array_of<shapes::text>}};

} // namespace

constinit const RouteShape MonitoringLogFiles::shape{.answer = &object_of<answer_members>};

Result<Response> MonitoringLogFiles::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session));
    return answer_with_data(session, [&]() -> Result<JsonTree> {
        BOOST_OUTCOME_TRY(const auto names, get_log_file_list(db));
        return serialize_payload(names);
    });
}

Result<std::vector<std::string>>
MonitoringLogFiles::get_log_file_list(const std::shared_ptr<cfgdb::CfgDbWrapper>& db) const {
    NameList list;
    BOOST_OUTCOME_TRY(core::call_c_api(*logger_, custom_layer__get_list_log_files, db->handle(), db->context(),
                                       &list.names, &list.count));
    std::vector<std::string> names;
    for (const char* name : list.all()) {
        names.emplace_back(name);
    }
    return names;
}

Result<JsonTree> MonitoringLogFiles::serialize_payload(std::span<const std::string> names) {
    BOOST_OUTCOME_TRY(auto root, create_object());
    BOOST_OUTCOME_TRY(auto array, create_array());
    cJSON* const log_files = array.get();
    BOOST_OUTCOME_TRY(add_to_object(root.get(), "log_files", std::move(array)));
    for (const auto& name : names) {
        BOOST_OUTCOME_TRY(auto item, create_cjson_from_value(name));
        BOOST_OUTCOME_TRY(add_to_array(log_files, std::move(item)));
    }
    return root;
}

} // namespace xpon::api_service
