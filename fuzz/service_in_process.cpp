#include "fuzz/service_in_process.hpp"

#include "fuzz/input_client.hpp"
#include "xpon/core/json_tree.hpp"
#include "xpon/core/utf8.hpp"

#include <cstdlib>

using namespace std::literals;

namespace xpon::fuzz {
namespace {

constexpr auto beginning =
    R"({"path":"auth","method":"auth","data":{"user":"admin","password":"admin"}})"
    "\0"
    R"({"session_id":"1","path":"configuration.ZebGCfg.pon.ont","method":"set","config_type":"candidate",)"
    R"("indices":["1","1"],"data":{"serial":[83,73,77,85,0,0,0,1,0,0],"password":"open","description":"Flat 1"}})"
    "\0"
    R"({"session_id":"1","path":"configuration.ZebGCfg.pon.ont","method":"set","config_type":"candidate",)"
    R"("indices":["1","2"],"data":{"serial":[83,73,77,85,0,0,0,2,0,0]}})"
    "\0"
    R"({"session_id":"1","path":"command.commit","method":"command"})"
    "\0"sv;

bool is_answer(std::string_view text) {
    const core::JsonTree tree(cJSON_ParseWithLength(text.data(), text.size()));
    return core::is_valid_utf8(text) && cJSON_IsBool(cJSON_GetObjectItemCaseSensitive(tree.get(), "success")) != 0;
}

} // namespace

void check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

ServiceInProcess::ServiceInProcess(const std::shared_ptr<ipc::IIpc>& peers)
    : service_(peers, std::make_shared<NoLogger>(), api_service::UnixEndpoint{}, pam_) {
    check(service_.register_routes().has_value());
    check(serve(beginning).find(R"("success":	false)") == std::string::npos);
    check(has_session());
}

std::string ServiceInProcess::serve(std::string_view received) {
    const auto client = std::make_shared<InputClient>(received);
    while (client->read_data()) {
        while (client->get_frames_left() > 0) {
            const auto before = client->answers.size();
            const bool is_answered = service_.process_socket(client).has_value();
            const auto answer = std::string_view(client->answers).substr(before);
            check(is_answered ? answer.ends_with('\0') && answer.find('\0') == answer.size() - 1 : answer.empty());
            check(!is_answered || is_answer(answer.substr(0, answer.size() - 1)));
        }
    }
    return client->answers;
}

bool ServiceInProcess::has_session() {
    return serve("{\"session_id\":\"1\",\"path\":\"test.echo.admin\",\"method\":\"echo\"}\0"sv)
               .find("\"success\":\ttrue") != std::string::npos;
}

} // namespace xpon::fuzz
