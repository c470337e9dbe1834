#include "tests/unit/platform/ipc/peer_thread.hpp"

#include <stdexcept>
#include <tuple>
#include <utility>

namespace xpon::ipc {

using namespace std::chrono_literals;

std::span<const std::byte> bytes_of(std::string_view text) {
    return std::as_bytes(std::span(text));
}

std::string text_of(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

PeerThread::PeerThread(Address address, Answer answer) : PeerThread(std::vector{address}, std::move(answer)) {}

PeerThread::PeerThread(const std::vector<Address>& addresses, Answer answer) : answer_(std::move(answer)) {
    auto server = make_zmq_server(std::make_shared<test::RecordingLogger>());
    server_ = std::move(server.value());
    for (const auto address : addresses) {
        if (const auto bound = server_->bind(address, *this); !bound) {
            throw std::runtime_error(bound.error().to_string());
        }
    }
    thread_ = std::jthread([this](const std::stop_token& stop) {
        while (!stop.stop_requested() && server_->serve(2ms, {})) {
            if (const auto ended = ending_.exchange({}); ended != Address()) {
                std::ignore = server_->unbind(ended);
            }
        }
    });
}

PeerThread::~PeerThread() {
    thread_.request_stop();
    thread_.join();
}

ServerAnswer PeerThread::echo_answer(const ServerRequest& request) {
    return {0, {request.payload.begin(), request.payload.end()}};
}

std::vector<std::string> PeerThread::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::vector<std::string> PeerThread::notices() const {
    const std::lock_guard lock(mutex_);
    return notices_;
}

ServerAnswer PeerThread::handle(const ServerRequest& request) {
    {
        const std::lock_guard lock(mutex_);
        requests_.push_back(text_of(request.payload));
    }
    return answer_(request);
}

void PeerThread::notice(const ServerRequest& request) {
    const std::lock_guard lock(mutex_);
    notices_.push_back(text_of(request.payload));
}

IpcTest::IpcTest() : endpoint(make_endpoint({.handshake = 10s, .probe_interval = 5ms})) {}

std::shared_ptr<IIpc> IpcTest::make_endpoint(Timing timing) const {
    return make_zmq_ipc(own, logger, timing).value();
}

Ipc::Reply IpcTest::ask(std::string_view text, std::chrono::milliseconds deadline) const {
    return endpoint->raw()->request(peer, echo, bytes_of(text), deadline);
}

Ipc::Reply IpcTest::ask_until_up(std::string_view text) const {
    Ipc::Reply reply;
    eventually([&] { return (reply = ask(text)).status == 0; });
    return reply;
}

} // namespace xpon::ipc
