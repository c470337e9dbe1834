#include "gateway/http/static_files.hpp"
#include "tests/support/temporary_olt_root.hpp"

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::gateway {
namespace {

std::string header(const HttpResponse& response, std::string_view name) {
    const auto found = std::ranges::find(response.headers, name, [](const auto& field) { return field.first; });
    return found == response.headers.end() ? "" : found->second;
}

class StaticFilesTest : public testing::Test {
protected:
    StaticFilesTest() {
        folder.write("secret.txt", "secret");
        folder.write("www/index.html", "the page");
        folder.write("www/app-1A2B3C4D.js", "code");
        folder.write("www/app-1A2B3C4D.js.br", "small");
        folder.write("www/app-1A2B3C4D.js.gz", "less small");
        folder.write("www/fonts/plain.woff2", "font");
        folder.write("www/.hidden.txt", "secret");
        std::filesystem::create_symlink(folder.path() / "secret.txt", folder.path() / "www/out.txt");
        std::filesystem::create_directory_symlink(folder.path(), folder.path() / "www/up");
    }

    [[nodiscard]] HttpResponse get(const std::string& target,
                                   const std::vector<std::pair<std::string, std::string>>& headers = {}) const {
        return files.get({.method = "GET", .target = target, .headers = headers});
    }

    test::TemporaryOltRoot folder;
    StaticFiles files{folder.path() / "www"};
};

TEST_F(StaticFilesTest, NothingOutsideIsReached) {
    for (const auto* target :
         {"/../secret.txt", "/..%2fsecret.txt", "/%2e%2e/secret.txt", "/fonts/../../secret.txt", "//etc/hostname.x",
          "/out.txt", "/up/secret.txt", "/.hidden.txt", "/fonts/..%5c..%5csecret.txt", "/secret.txt%00.js", "/%zz.js",
          "secret.txt", "/missing.js", "/app-1A2B3C4D.js/x.js"}) {
        const auto response = get(target);
        EXPECT_EQ(response.status, 404U) << target;
        EXPECT_EQ(response.body.find("secret"), std::string::npos) << target;
    }
}

TEST_F(StaticFilesTest, TypesAndCaching) {
    for (const auto* target : {"/", "/index.html", "/onts", "/onts/3/17", "/?x=1.js", "/fonts"}) {
        const auto page = get(target);
        EXPECT_EQ(page.body, "the page") << target;
        EXPECT_EQ(page.content_type, "text/html; charset=utf-8");
        EXPECT_EQ(header(page, "Cache-Control"), "no-cache");
    }
    EXPECT_EQ(get("/fonts/plain.woff2").content_type, "font/woff2");
    const auto code = get("/app-1A2B3C4D.js");
    EXPECT_EQ(code.content_type, "text/javascript; charset=utf-8");
    EXPECT_EQ(header(code, "Cache-Control"), "public, max-age=31536000, immutable");

    const auto tag = header(get("/"), "ETag");
    EXPECT_EQ(get("/", {{"if-none-match", tag}}).status, 304U);
    folder.write("www/index.html", "another page");
    EXPECT_EQ(get("/", {{"if-none-match", tag}}).body, "another page");
}

TEST_F(StaticFilesTest, CompressedToThoseWhoTakeIt) {
    struct Case {
        const char* accepts;
        const char* body;
        const char* encoding;
    };
    for (const auto& [accepts, body, encoding] :
         {Case{"", "code", ""}, Case{"gzip, deflate, br", "small", "br"}, Case{"gzip", "less small", "gzip"},
          Case{"br;q=0, gzip;q=0.5", "less small", "gzip"}, Case{"brotli", "code", ""}}) {
        const auto response = get("/app-1A2B3C4D.js", {{"accept-encoding", accepts}});
        EXPECT_EQ(response.body, body) << accepts;
        EXPECT_EQ(header(response, "Content-Encoding"), encoding) << accepts;
        EXPECT_EQ(response.content_type, "text/javascript; charset=utf-8");
    }
}

} // namespace
} // namespace xpon::gateway
