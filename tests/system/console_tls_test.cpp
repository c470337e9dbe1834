#include "tests/support/eventually.hpp"
#include "tests/system/console.hpp"
#include "tests/system/olt.hpp"

#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/socket.h>
#include <sys/time.h>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <openssl/bio.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

namespace xpon::test {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

constexpr auto host = "Host: 127.0.0.1:8080\r\n";
constexpr auto patience_s = 10;

struct Deleter {
    void operator()(SSL_CTX* context) const {
        SSL_CTX_free(context);
    }
    void operator()(BIO* bio) const {
        BIO_free_all(bio);
    }
};

/// A key and a certificate that it has signed itself.
struct Certificate {
    std::string file;
    std::string key;

    Certificate(const std::filesystem::path& folder, const std::string& name)
        : file(folder / "certificate.pem"), key(folder / "key.pem") {
        Process openssl({"/usr/bin/openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                         "ec_paramgen_curve:prime256v1", "-nodes", "-subj", "/CN=" + name, "-keyout", key, "-out",
                         file},
                        {});
        EXPECT_EQ(openssl.wait(), 0) << openssl.output();
    }
};

/// One connection of a client that trusts that certificate alone.
class TlsConnection {
public:
    explicit TlsConnection(const Certificate& certificate) : context_(SSL_CTX_new(TLS_client_method())) {
        SSL_CTX_load_verify_locations(context_.get(), certificate.file.c_str(), nullptr);
        SSL_CTX_set_verify(context_.get(), SSL_VERIFY_PEER, nullptr);
        bio_.reset(BIO_new_ssl_connect(context_.get()));
        BIO_set_conn_hostname(bio_.get(), fmt::format("127.0.0.1:{}", console_port).c_str());
        is_open_ = BIO_do_connect(bio_.get()) == 1;
        const timeval patience{.tv_sec = patience_s, .tv_usec = 0};
        setsockopt(static_cast<int>(BIO_get_fd(bio_.get(), nullptr)), SOL_SOCKET, SO_RCVTIMEO, &patience,
                   sizeof patience);
    }

    [[nodiscard]] bool is_open() const {
        return is_open_;
    }
    /// Sends it, and what comes back up to and with `end`; less when that does not come.
    std::string ask(const std::string& bytes, std::string_view end) {
        if (BIO_write(bio_.get(), bytes.data(), static_cast<int>(bytes.size())) != static_cast<int>(bytes.size())) {
            return "";
        }
        std::string received;
        std::vector<char> buffer(65536);
        while (received.find(end) == std::string::npos) {
            const auto count = BIO_read(bio_.get(), buffer.data(), static_cast<int>(buffer.size()));
            if (count <= 0) {
                break;
            }
            received.append(buffer.data(), static_cast<std::size_t>(count));
        }
        return received;
    }
    std::string get(const std::string& target, std::string_view end, const std::string& cookie = "") {
        return ask(fmt::format("GET {} HTTP/1.1\r\n{}Cookie: {}\r\n\r\n", target, host, cookie), end);
    }

private:
    std::unique_ptr<SSL_CTX, Deleter> context_;
    std::unique_ptr<BIO, Deleter> bio_;
    bool is_open_ = false;
};

std::vector<std::string> options_for(const Certificate& certificate, const std::filesystem::path& pages = "none") {
    return {"--certificate", certificate.file, "--key", certificate.key, "--pages", pages};
}

TEST(ConsoleOverTls, ServesPagesSessionsAndEvents) {
    Olt olt;
    olt.start();
    const Certificate certificate(olt.root(), "olt");
    const auto pages = olt.root() / "pages";
    std::filesystem::create_directory(pages);
    std::string script; // more than a record of TLS and than a socket's buffer
    for (int i = 0; script.size() < 3'000'000; ++i) {
        script += fmt::format("{}\n", i);
    }
    script += "// end";
    std::ofstream(pages / "large.js") << script;
    Console console(options_for(certificate, pages));

    TlsConnection browser(certificate);
    ASSERT_TRUE(browser.is_open());
    const auto post_head = fmt::format("POST /api/login HTTP/1.1\r\n{}Content-Type: application/json\r\n"
                                       "X-OLT-Console: 1\r\nOrigin: https://127.0.0.1:8080\r\n",
                                       host);
    const auto body = std::string(20'000, ' ') + R"({"user":"viewer","password":"viewer"})"; // in two records
    EXPECT_EQ(browser.ask(fmt::format("{}Expect: 100-continue\r\nContent-Length: {}\r\n\r\n", post_head, body.size()),
                          "\r\n\r\n"),
              "HTTP/1.1 100 Continue\r\n\r\n");
    const auto login = browser.ask(body, "}");
    EXPECT_THAT(login, AllOf(HasSubstr("HTTP/1.1 200 OK\r\n"), HasSubstr("\r\nStrict-Transport-Security: max-age="),
                             ContainsRegex("Set-Cookie: __Secure-olt_console_8080=[A-Za-z0-9_-]{43}; Path=/api; "
                                           "HttpOnly; SameSite=Strict; Secure\r\n")));
    const auto begin = login.find("__Secure");
    const auto cookie = login.substr(begin, login.find(';', begin) - begin);
    EXPECT_THAT(browser.get("/api/session", "}", cookie), HasSubstr(R"("user":"viewer")")) << "on the same connection";
    const auto large = browser.get("/large.js", "// end");
    EXPECT_EQ(large.substr(large.find("\r\n\r\n") + 4), script);

    std::size_t descriptors = 0;
    constexpr auto watch = "/api/events?interval=500&watch=%5B%7B%22path%22:%22monitoring.system%22%7D%5D";
    {
        TlsConnection page(certificate);
        EXPECT_THAT(page.get(watch, R"("answer":{"success":true)", cookie), HasSubstr("event: answer\n"));
        EXPECT_THAT(page.ask("", R"("answer":{"success":true)"), HasSubstr("event: answer\n")) << "and once more";
        descriptors = console.process().descriptors();
    }
    EXPECT_TRUE(eventually([&] { return console.process().descriptors() < descriptors; })) << "the page is gone";
}

TEST(ConsoleOverTls, OutlivesWhatIsNoHandshake) {
    const OltFolder folder;
    const Certificate certificate(folder.path(), "olt");
    Console console(options_for(certificate));
    ASSERT_TRUE(TlsConnection(certificate).is_open());
    const auto descriptors = console.process().descriptors();
    const auto soon = std::chrono::steady_clock::now() + std::chrono::seconds(patience_s);
    EXPECT_THAT(Browser().get("/").head, Not(HasSubstr("HTTP"))) << "plain HTTP";
    const std::string hello("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03",
                            11); // how a ClientHello of 512 bytes begins
    std::vector<client::Connection> silent;
    for (int i = 0; i < 20; ++i) {
        for (const auto& bytes : {hello, std::string(1000, 'x'), std::string()}) {
            auto broken_off = client::Connection::open(client::TcpEndpoint{.port = console_port}).value();
            EXPECT_TRUE(bytes.empty() || broken_off.send_bytes(bytes, soon));
        }
        silent.push_back(client::Connection::open(client::TcpEndpoint{.port = console_port}).value());
        EXPECT_TRUE(silent.back().send_bytes(hello, soon));
    }
    EXPECT_THAT(TlsConnection(certificate).get("/api/session", "}"), HasSubstr(" 401 "));
    EXPECT_TRUE(eventually([&] { return console.process().descriptors() <= descriptors; }, std::chrono::seconds(30)))
        << "those that say no more are given up";
    console.process().send_signal(SIGTERM);
    EXPECT_EQ(console.process().wait(), 0) << console.process().output();
}

TEST(ConsoleOverTls, TakesANewCertificateForNewConnections) {
    const OltFolder folder;
    const Certificate first(folder.path(), "first");
    Console console(options_for(first));
    TlsConnection old(first);
    ASSERT_TRUE(old.is_open());
    const Certificate second(folder.path(), "second"); // in the same files
    EXPECT_FALSE(TlsConnection(second).is_open());
    console.process().send_signal(SIGHUP);
    EXPECT_TRUE(eventually([&] { return TlsConnection(second).is_open(); }));
    EXPECT_THAT(old.get("/api/session", "}"), HasSubstr(" 401 "));
}

} // namespace
} // namespace xpon::test
