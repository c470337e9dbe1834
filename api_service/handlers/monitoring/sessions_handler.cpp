#include "api_service/handlers/monitoring/sessions_handler.hpp"

#include "api_service/handlers/monitoring/wire_texts.hpp"
#include "api_service/handlers/record_fields.hpp"

namespace xpon::api_service {
namespace {

/// Where the sessions of a kind come from and what is told of each.
template <class SessionList>
struct SessionTable;

template <>
struct SessionTable<Dhcp_get_sessions_msg> {
    static constexpr auto fetch = custom_layer__get_dhcp_session;
    static constexpr const char* name = "DhcpSession";
    static constexpr JsonField<Dhcp_session> fields[] = {
        {"pon_port_id", member<&Dhcp_session::pon_port>},
        {"ont_id", member<&Dhcp_session::ont_id>},
        {"mac",
         {[](JsonWriter& to, const Dhcp_session& lease) { return write_value(to, mac_text(lease.mac)); },
          &shapes::mac}},
        {"service_id", member<&Dhcp_session::service_id>},
        {"gem_port", member<&Dhcp_session::gem_port>},
        {"outer_vid", member<&Dhcp_session::outer_vid>},
        {"ip",
         {[](JsonWriter& to, const Dhcp_session& lease) { return write_value(to, ipv4_text(lease.ip)); },
          &shapes::ipv4}},
        {"life_time_msec", member<&Dhcp_session::life_time_msec>, "ms left of the lease"},
        {"ont_serial", member<&Dhcp_session::ont_serial>},
    };
};

template <>
struct SessionTable<Pppoe_get_sessions_msg> {
    static constexpr auto fetch = custom_layer__get_pppoe_session;
    static constexpr const char* name = "PppoeSession";
    static constexpr JsonField<Pppoe_session> fields[] = {
        {"pon_port_id", member<&Pppoe_session::pon_port>},
        {"ont_id", member<&Pppoe_session::ont_id>},
        {"gem_port", member<&Pppoe_session::gem_port>},
        {"session_id", member<&Pppoe_session::session_id>, "0 = blocked after too many failed attempts"},
        {"ont_serial", member<&Pppoe_session::ont_serial>},
        {"duration_sec", member<&Pppoe_session::duration_sec>, "s since it was opened"},
        {"unblock_rest_sec", member<&Pppoe_session::unblock_rest_sec>,
         "s until a blocked client may try again; 0 = it is not blocked"},
        {"client_mac",
         {[](JsonWriter& to, const Pppoe_session& session) { return write_value(to, mac_text(session.client_mac)); },
          &shapes::mac}},
    };
};

template <class SessionList>
constexpr Shape session_shape = named(SessionTable<SessionList>::name, object_of<SessionTable<SessionList>::fields>);
template <class SessionList>
constexpr Member answer_members[] = {{"sessions", &array_of<session_shape<SessionList>>}};

} // namespace

template <class SessionList>
constinit const RouteShape MonitoringSessionsHandler<SessionList>::shape{.answer =
                                                                             &object_of<answer_members<SessionList>>};

template <class SessionList>
Result<Response> MonitoringSessionsHandler<SessionList>::operator()(const Request&,
                                                                    const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    return answer_with_data(session, [&]() -> Result<std::string> {
        BOOST_OUTCOME_TRY(const auto sessions, fetch_list_from_peers<SessionList>(SessionTable<SessionList>::fetch));
        return serialize_payload(*sessions);
    });
}

template <class SessionList>
Result<std::string> MonitoringSessionsHandler<SessionList>::serialize_payload(const SessionList& sessions) {
    return write_data([&](JsonWriter& root) {
        return write_object(root, [&] {
            root.key("sessions");
            return write_objects(root, std::span(sessions.entries, sessions.count), [&](const auto& entry) {
                return write_fields(root, entry, SessionTable<SessionList>::fields);
            });
        });
    });
}

template class MonitoringSessionsHandler<Dhcp_get_sessions_msg>;
template class MonitoringSessionsHandler<Pppoe_get_sessions_msg>;

} // namespace xpon::api_service
