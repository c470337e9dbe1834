#include "xpon/client/client.hpp"

#include <utility>

namespace xpon::client {

using core::Result;

Result<Client> Client::connect(const Endpoint& endpoint, std::chrono::milliseconds patience) {
    BOOST_OUTCOME_TRY(auto connection, Connection::open(endpoint));
    return Client(std::move(connection), patience);
}

Result<Answer> Client::log_in(const std::string& user, const std::string& password) {
    Json credentials(cJSON_CreateObject());
    cJSON_AddStringToObject(credentials.get(), "user", user.c_str());
    cJSON_AddStringToObject(credentials.get(), "password", password.c_str());
    BOOST_OUTCOME_TRY(auto answer, request({.path = "auth", .method = "auth", .data = std::move(credentials)}));
    const char* id = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(answer.data.get(), "session_id"));
    if (answer.success && id != nullptr) {
        session_id_ = id;
    }
    return answer;
}

Result<Answer> Client::log_out() {
    BOOST_OUTCOME_TRY(auto answer, request({.path = "unauth", .method = "auth"}));
    session_id_.clear();
    return answer;
}

Result<Answer> Client::request(const Request& request) {
    BOOST_OUTCOME_TRY(const auto text, print_request(request, session_id_));
    BOOST_OUTCOME_TRY(const auto answer, exchange(text));
    return parse_answer(answer);
}

Result<std::string> Client::exchange(const std::string& frame) {
    const auto deadline = std::chrono::steady_clock::now() + patience_;
    BOOST_OUTCOME_TRY(connection_.send_frame(frame, deadline));
    return connection_.receive_frame(deadline);
}

} // namespace xpon::client
