// The text of a saved configuration. What is accepted consists of records that a client could have set. The checksum is
// put in, since no fuzzer guesses one.
#include "cfgdb/saved_configuration.hpp"

#include "serializer/table_description.hpp"
#include "xpon/core/json_tree.hpp"

#include <cstdint>
#include <cstdlib>

#include <boost/crc.hpp>
#include <cjson/cJSON.h>
#include <fmt/format.h>

// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(input), size);
    xpon::cfgdb::StartReport report;
    static_cast<void>(xpon::cfgdb::parse_saved_configuration(text, report));
    static_cast<void>(xpon::serializer::DescribedTable::parse(text));

    const xpon::core::JsonTree tree(cJSON_ParseWithLength(text.data(), text.size()));
    if (!tree) {
        return 0;
    }
    const auto printed = xpon::core::print_line(tree.get());
    boost::crc_32_type crc;
    crc.process_bytes(printed.get(), std::string_view(printed.get()).size());
    const auto file =
        fmt::format(R"({{"format":"olt-config","version":1,"crc32":{},"records":{}}})", crc.checksum(), printed.get());
    const auto records = xpon::cfgdb::parse_saved_configuration(file, report);
    if (records.has_value()) {
        for (const auto& [id, record] : records.value()) {
            const auto& row = xpon::cfgdb::element(id.element);
            if (record.size() != row.table.size || id.indices[0] >= row.sizes[0] || id.indices[1] >= row.sizes[1]) {
                std::abort();
            }
        }
    }
    return 0;
}
