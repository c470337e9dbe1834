#pragma once

#include "cfgdb/database.hpp"
#include "cfgdb/ont_number.hpp"
#include "serializer/cjson_tree.hpp"
#include "serializer/record_json.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::test {

/// A record of the candidate and the JSON to set it to. Numbers count from 1, as clients see them.
struct Edit {
    cfgdb::RecordId id;
    std::string json;
};

template <class Record>
Edit edit(const std::string& json, unsigned number = 1) {
    return {{cfgdb::element_of<Record>, {static_cast<std::uint16_t>(number - 1), 0}}, json};
}

inline Edit edit_ont(unsigned port, unsigned ont, const std::string& json) {
    const auto index = (port - 1) * cfgdb::onts_per_pon_port + ont - 1;
    return {{cfgdb::element_of<cfgdb::PonOnt>, {static_cast<std::uint16_t>(index), 0}}, json};
}

inline Edit edit_service(unsigned port, unsigned ont, unsigned service, const std::string& json) {
    const auto index = (port - 1) * cfgdb::onts_per_pon_port + ont - 1;
    return {{cfgdb::element_of<cfgdb::OntServices>,
             {static_cast<std::uint16_t>(index), static_cast<std::uint16_t>(service - 1)}},
            json};
}

inline const cfgdb::Database& database_of(const cfgdb::CfgDbWrapper& client) {
    return *static_cast<const cfgdb::Database*>(client.handle());
}

inline void apply(const cfgdb::CfgDbWrapper& client, const std::vector<Edit>& edits) {
    for (const auto& [id, json] : edits) {
        const auto& table = cfgdb::element(id.element).table;
        const serializer::Tree data(cJSON_Parse(json.c_str()));
        std::vector<std::byte> record(table.size);
        cJSON* errors = nullptr;
        ASSERT_EQ(serializer::deserialize_record(table, data.get(), record.data(), &errors), 0);
        const serializer::Tree owner(errors);
        ASSERT_EQ(errors, nullptr) << json << cJSON_Print(errors);
        database_of(client).write(id, record.data());
    }
}

/// "" for success, else the message.
inline std::string commit(cfgdb::CfgDbWrapper& client) {
    const auto result = client.commit(nullptr);
    if (result.has_value()) {
        return "";
    }
    EXPECT_TRUE(result.error().code == core::Error::InvalidState || result.error().code == core::Error::Empty);
    return result.error().info->message;
}

} // namespace xpon::test
