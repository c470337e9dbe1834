// The configuration database, the serialiser and the error texts of the second platform: every record is zero, whatever
// it is set to, and its JSON is its first byte.

#include "api_service/handlers/configuration/elements.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/error_texts/json_errors.hpp"

#include <array>
#include <cstring>

namespace xpon::cfgdb {

class Database {};

CfgDbWrapper::CfgDbWrapper(const std::string& client_name) : client_name_(client_name), context_(1) {}
CfgDbWrapper::~CfgDbWrapper() = default;
core::Result<User_record> CfgDbWrapper::find_user_by_username(const std::string&) const {
    return User_record{.name = {}, .web_privilege = 3};
}
core::Result<void> CfgDbWrapper::commit(const std::shared_ptr<ipc::IIpc>&) {
    return core::Error::Empty;
}
core::Result<void> CfgDbWrapper::rollback() {
    return core::success();
}
const void* CfgDbWrapper::handle() const {
    return &database_;
}
int CfgDbWrapper::context() const {
    return context_;
}

namespace {

template <class Record>
int read(Record* out) {
    std::memset(out, 0, sizeof *out);
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
    int getDb_##suffix(const void*, int, record* out, const unsigned short*) {                                         \
        return read(out);                                                                                              \
    }                                                                                                                  \
    int getRunDb_##suffix(const void*, record* out, const unsigned short*) {                                           \
        return read(out);                                                                                              \
    }                                                                                                                  \
    int serialize_##record##_to_json(const record* record_in, cJSON* target, cJSON**) {                                \
        return serialize(record_in, target);                                                                           \
    }
#define XPON_DEFINE_XPON_READ_WRITE(suffix, record, levels)                                                            \
    XPON_DEFINE_XPON_READ_ONLY(suffix, record, levels)                                                                 \
    int setDb_##suffix(const void*, int, const record*, const unsigned short*) {                                       \
        return 0;                                                                                                      \
    }                                                                                                                  \
    int deserialize_##record##_from_json(const cJSON* data, record* out, cJSON** errors) {                             \
        return deserialize(data, out, errors);                                                                         \
    }
#define XPON_DEFINE_XPON_RESETTABLE(suffix, record, levels)                                                            \
    XPON_DEFINE_XPON_READ_WRITE(suffix, record, levels)                                                                \
    int setDb_init_##suffix(const void*, int, unsigned short*) {                                                       \
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
int custom_layer__configuration_set_default(const void*, int) {
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
