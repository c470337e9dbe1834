#include "client/oltctl/commands/reading.hpp"

#include "client/oltctl/commands/context.hpp"
#include "client/oltctl/commands/syntax.hpp"
#include "client/oltctl/configuration/records.hpp"

namespace xpon::oltctl {

void add_reading(CommandSyntax command, Reading& words) {
    command.add_option("PATH", words.path, "such as monitoring.system").required().type_name("");
    command.add_option("INDICES", words.indices, "a list for each level, such as 1-2 1-8,12").type_name("");
    command.add_flag("--candidate", words.candidate, "the configuration that is being edited, not the running one");
}

client::Request request_for(Context& context, const Reading& words) {
    client::Request request{.path = words.path, .method = "get", .indices = words.indices};
    if (words.path.starts_with("configuration.")) {
        request.config_type = words.candidate ? "candidate" : "running";
    }
    const auto* const element = find_element(words.path);
    if (element != nullptr && request.indices.empty()) {
        request.indices = ConfigurationAccess(context.service()).all_indices(*element);
    }
    return request;
}

} // namespace xpon::oltctl
