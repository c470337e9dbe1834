#include "api_service/handlers/commands/text_handlers.hpp"

#include "api_service/handlers/handler_frame.hpp"
#include "api_service/protocol/json_building.hpp"
#include "xpon/core/utf8.hpp"
#include "xpon/obfuscation/obfuscation.h"

#include <cstddef>
#include <cstring>
#include <string>

namespace xpon::api_service {
namespace {

constexpr Member members[] = {{"text", &shapes::text}};

Result<const char*> get_text(const Request& request) {
    const cJSON* text = cJSON_GetObjectItemCaseSensitive(request.data.get(), "text");
    if (text == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, "Object cannot be null");
    }
    if (cJSON_IsString(text) == 0) {
        return ErrorPayload(Error::InvalidInputArg, "Object must be a string");
    }
    return text->valuestring;
}

Result<Response> answer_with_text(const std::shared_ptr<ILogger>& logger, const Request& request,
                                  const std::shared_ptr<Session>& session, std::size_t (*size_for)(const char* text),
                                  int (*convert)(const char* text, char* output)) {
    return HandlerFrame(logger).answer_with_data(session, [&]() -> Result<JsonTree> {
        BOOST_OUTCOME_TRY(const auto* text, get_text(request));
        std::string output(size_for(text), '\0');
        BOOST_OUTCOME_TRY(core::call_c_api(*logger, convert, text, output.data()));
        output.resize(std::strlen(output.c_str()));
        if (!core::is_valid_utf8(output)) {
            return ErrorPayload(Error::InvalidInputArg, "Text is not valid UTF-8");
        }
        BOOST_OUTCOME_TRY(auto root, create_object());
        BOOST_OUTCOME_TRY(set_object_item(root.get(), "text", output));
        return root;
    });
}

/// A plain text is shorter than its form, but "" stands for itself and has a NUL too.
std::size_t size_of_plain_text(const char* text) {
    return std::strlen(text) + 1;
}

} // namespace

constinit const RouteShape text_handler_shape{.request = &object_of<members>, .answer = &object_of<members>};

Result<Response> text_obfuscate_handler(const std::shared_ptr<ILogger>& logger, const Request& request,
                                        const std::shared_ptr<Session>& session) {
    return answer_with_text(logger, request, session, calculate_valid_size, text_obfuscate);
}

Result<Response> text_deobfuscate_handler(const std::shared_ptr<ILogger>& logger, const Request& request,
                                          const std::shared_ptr<Session>& session) {
    return answer_with_text(logger, request, session, size_of_plain_text, text_deobfuscate);
}

} // namespace xpon::api_service
