// The configuration database, the serialiser and the error texts of the second platform: records are bytes in memory,
// and their JSON is the first of them.

#include "api_service/handlers/configuration/elements.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/error_texts/json_errors.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <span>
#include <vector>

namespace xpon::cfgdb {

/// What is not there reads as zero.
class Database {
public:
    /// Bytes by name of the element and indices.
    using Store = std::map<std::pair<std::string, std::array<unsigned short, 2>>, std::vector<std::byte>>;
    Store candidate;
    Store running;
};

CfgDbWrapper::CfgDbWrapper(const std::string& client_name) : client_name_(client_name), context_(1) {
    static const auto database = std::make_shared<Database>();
    database_ = database;
}
CfgDbWrapper::~CfgDbWrapper() = default;
core::Result<User_record> CfgDbWrapper::find_user_by_username(const std::string&) const {
    return User_record{.name = {}, .web_privilege = 3};
}
core::Result<void> CfgDbWrapper::commit(const std::shared_ptr<ipc::IIpc>&) {
    if (database_->candidate == database_->running) {
        return core::Error::Empty;
    }
    database_->running = database_->candidate;
    return core::success();
}
core::Result<void> CfgDbWrapper::rollback() {
    database_->candidate = database_->running;
    return core::success();
}
const void* CfgDbWrapper::handle() const {
    return &database_;
}
int CfgDbWrapper::context() const {
    return context_;
}

namespace {

Database& database_of(const void* handle) {
    return **static_cast<const std::shared_ptr<Database>*>(handle);
}

Database::Store::key_type key_of(const char* element, std::size_t levels, const unsigned short* indices) {
    Database::Store::key_type key{element, {}};
    std::copy_n(indices, levels, key.second.begin());
    return key;
}

template <class Record>
int read(const Database::Store& store, const Database::Store::key_type& key, Record* out) {
    std::memset(out, 0, sizeof *out);
    if (const auto found = store.find(key); found != store.end()) {
        std::memcpy(out, found->second.data(), sizeof *out);
    }
    return 0;
}

template <class Record>
int write(Database::Store& store, const Database::Store::key_type& key, const Record* record) {
    const auto bytes = std::as_bytes(std::span(record, 1));
    store[key].assign(bytes.begin(), bytes.end());
    return 0;
}

constexpr const char* key = "first_byte";

template <class Record>
int serialize(const Record* record, cJSON* target) {
    const auto byte = *reinterpret_cast<const std::uint8_t*>(record);
    return cJSON_AddNumberToObject(target, key, byte) == nullptr ? -1 : 0;
}

/// Only a number is no error.
template <class Record>
int deserialize(const cJSON* data, Record* out, cJSON** errors) {
    const auto* const byte = cJSON_GetObjectItemCaseSensitive(data, key);
    if (cJSON_IsNumber(byte) == 0) {
        *errors = cJSON_Parse(R"([{"message":{"key":"text 22","params":{}},"path":"first_byte"}])");
        return 0;
    }
    std::memset(out, byte->valueint, sizeof *out);
    return 0;
}

} // namespace
} // namespace xpon::cfgdb

using namespace xpon::cfgdb;

#define XPON_DEFINE_XPON_READ_ONLY(suffix, record, levels)                                                             \
    int getDb_##suffix(const void* db, int, record* out, const unsigned short* indices) {                              \
        return read(database_of(db).candidate, key_of(#suffix, levels, indices), out);                                 \
    }                                                                                                                  \
    int getRunDb_##suffix(const void* db, record* out, const unsigned short* indices) {                                \
        return read(database_of(db).running, key_of(#suffix, levels, indices), out);                                   \
    }                                                                                                                  \
    int serialize_##record##_to_json(const record* record_in, cJSON* target, cJSON**) {                                \
        return serialize(record_in, target);                                                                           \
    }
#define XPON_DEFINE_XPON_READ_WRITE(suffix, record, levels)                                                            \
    XPON_DEFINE_XPON_READ_ONLY(suffix, record, levels)                                                                 \
    int setDb_##suffix(const void* db, int, const record* record_in, const unsigned short* indices) {                  \
        return write(database_of(db).candidate, key_of(#suffix, levels, indices), record_in);                          \
    }                                                                                                                  \
    int deserialize_##record##_from_json(const cJSON* data, record* out, cJSON** errors) {                             \
        return deserialize(data, out, errors);                                                                         \
    }
#define XPON_DEFINE_XPON_RESETTABLE(suffix, record, levels)                                                            \
    XPON_DEFINE_XPON_READ_WRITE(suffix, record, levels)                                                                \
    int setDb_init_##suffix(const void* db, int, unsigned short* indices) {                                            \
        database_of(db).candidate.erase(key_of(#suffix, levels, indices));                                             \
        return 0;                                                                                                      \
    }
#define XPON_DEFINE_ELEMENT(access, suffix, record, levels) XPON_DEFINE_##access(suffix, record, levels)

XPON_API_ELEMENTS(XPON_DEFINE_ELEMENT)

int getRunDbArray_ZebGCfg_switch_config_front_port(const void*, FrontPort* out) {
    std::memset(out, 0, (max_uplink_ports + 1) * sizeof *out);
    return 0;
}

int custom_layer__configuration_save(Ipc*, const void*, int, const char*) {
    return 0;
}
int custom_layer__configuration_set_default(const void* db, int) {
    database_of(db).candidate.clear();
    return 0;
}

/// "text N", for every index below 40.
int get_json_errors_from_index(Json_errors index, const char** text) {
    static std::array<std::string, 40> texts;
    const auto number = static_cast<std::size_t>(index);
    if (number >= texts.size()) {
        return -1;
    }
    texts.at(number) = "text " + std::to_string(number);
    *text = texts.at(number).c_str();
    return 0;
}
