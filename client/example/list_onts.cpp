// Prints the state of each ONT of PON port 1: list_onts USER PASSWORD
#include <cstdio>

#include <xpon/client/client.hpp>
#include <xpon/client/fault.hpp>

using namespace xpon;

int explain(const core::ErrorPayload& error) {
    const bool is_away = client::fault_of(error) == client::Fault::unreachable;
    std::fprintf(stderr, "%s%s\n", error.to_string().c_str(), is_away ? " (is api_service running?)" : "");
    return 1;
}

int main(int count, char** words) {
    auto service = client::Client::connect(client::TcpEndpoint{}, std::chrono::seconds(5));
    if (!service) {
        return explain(service.error());
    }
    const auto login = service.value().log_in(count > 1 ? words[1] : "viewer", count > 2 ? words[2] : "");
    if (!login || !login.value().is_good()) {
        return login ? 2 : explain(login.error());
    }
    const auto answer =
        service.value().request({.path = "monitoring.interface.ont.state", .method = "get", .indices = {"1", "1-256"}});
    if (!answer || !answer.value().is_good()) {
        return answer ? 2 : explain(answer.error());
    }
    const cJSON* ont = nullptr;
    cJSON_ArrayForEach(ont, answer.value().data.get()) {
        std::printf("%s\n", cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(ont, "state")));
    }
    return service.value().log_out() ? 0 : 1;
}
