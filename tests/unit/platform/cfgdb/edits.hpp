#pragma once

#include "cfgdb/database.hpp"
#include "cfgdb/ont_number.hpp"
#include "tests/unit/platform/serializer/json_records.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"

namespace xpon::test {

/// A record of the candidate and the JSON to set it to. Numbers count from 1, as clients see them.
struct Edit {
    cfgdb::RecordId id;
    std::string json;
};

template <class Structure>
Edit edit(const std::string& json, unsigned number = 1) {
    return {{cfgdb::element_of<Structure>, {static_cast<std::uint16_t>(number - 1), 0}}, json};
}

inline Edit edit_hostname(const std::string& name) {
    return edit<cfgdb::GSystemHostname>(R"({"hostname":")" + name + "\"}");
}

inline Edit edit_ont(unsigned port, unsigned ont, const std::string& json) {
    return edit<cfgdb::PonOnt>(json, (port - 1) * cfgdb::onts_per_pon_port + ont);
}

inline Edit edit_service(unsigned port, unsigned ont, unsigned service, const std::string& json) {
    auto change = edit<cfgdb::OntServices>(json, (port - 1) * cfgdb::onts_per_pon_port + ont);
    change.id.indices[1] = static_cast<std::uint16_t>(service - 1);
    return change;
}

inline const cfgdb::Database& database_of(const cfgdb::CfgDbWrapper& client) {
    return *static_cast<const cfgdb::Database*>(client.handle());
}

inline void apply(const cfgdb::CfgDbWrapper& client, const std::vector<Edit>& edits) {
    for (const auto& [id, json] : edits) {
        Record record;
        ASSERT_EQ(printed(read(cfgdb::element(id.element).table, json, record).get()), "") << json;
        database_of(client).write(id, record.data());
    }
}

/// "" for success, else the message.
inline std::string commit(cfgdb::CfgDbWrapper& client, const std::shared_ptr<ipc::IIpc>& ipc = nullptr) {
    const auto result = client.commit(ipc);
    if (result.has_value()) {
        return "";
    }
    EXPECT_TRUE(result.error().code == core::Error::InvalidState || result.error().code == core::Error::Empty);
    return result.error().info->message;
}
inline const std::string nothing_to_commit = "Nothing to commit";

/// A record of one of the stores; indices count from 0.
template <class Structure>
Structure stored(const cfgdb::CfgDbWrapper& client, cfgdb::Store store, std::array<std::uint16_t, 2> indices = {}) {
    Structure structure{};
    database_of(client).read(store, {cfgdb::element_of<Structure>, indices}, reinterpret_cast<std::byte*>(&structure));
    return structure;
}

inline std::string hostname(const cfgdb::CfgDbWrapper& client, cfgdb::Store store = cfgdb::Store::running) {
    return stored<cfgdb::GSystemHostname>(client, store).hostname;
}

} // namespace xpon::test
