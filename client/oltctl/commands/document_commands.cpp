#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/configuration/document.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "client/oltctl/text_file.hpp"

#include <memory>
#include <string>

#include <fmt/format.h>

namespace xpon::oltctl {

void add_document_commands(CommandSyntax program, Context& context) {
    const auto exporter = program.add_command("export", "The whole configuration as one JSON document");
    const auto candidate = std::make_shared<bool>(false);
    exporter.add_flag("--candidate", *candidate, "the configuration that is being edited, not the running one");
    exporter.does(context, [&context, candidate] {
        ConfigurationAccess access(context.service());
        print(export_document(access, *candidate ? "candidate" : "running"));
    });

    const auto importer =
        program.add_command("import", "Make the candidate what such a document says; only differences are sent");
    const auto path = std::make_shared<std::string>();
    importer.add_option("FILE", *path, "the document; - for standard input").required().type_name("");
    importer.does(context, [&context, path] {
        ConfigurationAccess access(context.service());
        const auto imported = import_document(access, read_text_file(*path));
        print(context.as_json ? fmt::format("{{\"changed\": {}}}\n", imported.changed)
              : imported.changed == 0
                  ? "Nothing differs.\n"
                  : fmt::format("{} records changed; `oltctl commit` puts them into force.\n", imported.changed));
    });
}

} // namespace xpon::oltctl
