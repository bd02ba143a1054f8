// The real site (made by `ostrakan init` from site/) served with the real page components on
// an ephemeral loopback port, and an administrator who signs in as a browser does: by reading
// the verify picture's digits against body.Fix.
#pragma once

#include <gtest/gtest.h>

#include <sstream>

#include "engine/commands.h"
#include "engine/http_server.h"
#include "frame/error_log.h"
#include "http/http_client.h"
#include "platform/text/codepage.h"
#include "support/page_harness.h"

namespace ostrakan::testing {

// The digits of a 40 x 10 verify picture, matched cell by cell against body.Fix.
inline std::string ReadVerifyCode(const std::string& bmp, const std::string& font) {
  const size_t offset =
      static_cast<unsigned char>(bmp.at(10)) | static_cast<unsigned char>(bmp.at(11)) << 8;
  std::string code;
  for (size_t cell = 0; cell < 4; ++cell) {
    for (int digit = 0; digit <= 9; ++digit) {
      bool same = true;
      for (size_t row = 0; row < 10 && same; ++row)
        same = bmp.compare(offset + row * 120 + cell * 30, 30, font,
                           static_cast<size_t>(9 - digit) * 320 + row * 32, 30) == 0;
      if (same) {
        code += static_cast<char>('0' + digit);
        break;
      }
    }
  }
  return code;
}

// Percent-encodes the GBK bytes of a text, as a browser sends form fields of a GB2312 page.
inline std::string GbkEscape(std::u16string_view text) {
  static const char* hex = "0123456789ABCDEF";
  std::string out;
  for (unsigned char c : text::Encode(text, 936)) {
    if (std::isalnum(c)) {
      out += static_cast<char>(c);
    } else {
      out += '%';
      out += hex[c >> 4];
      out += hex[c & 15];
    }
  }
  return out;
}

class SiteTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir_ = new TempDir();
    engine::InitOptions init;
    init.dir = dir_->path() / "site";
    init.from = SourceDir() / "site";
    init.password = "secret123";
    std::ostringstream out, err;
    ASSERT_EQ(engine::RunInit(init, out, err), 0) << err.str();
    SetErrorLogPath(root() / "data/PagebindLog.Log");
    engine::ServerOptions options;
    options.siteRoot = root();
    options.listen = "127.0.0.1:0";
    options.threads = 8;
    server_ = new engine::HttpServer(options);
  }

  static void TearDownTestSuite() {
    delete server_;
    delete dir_;
  }

  static std::filesystem::path root() { return dir_->path() / "site"; }
  static std::filesystem::path database() { return root() / "data/ostrakan.db"; }
  HttpClient client() const { return HttpClient(server_->port()); }
  static std::u16string Text(const HttpReply& r) { return text::Decode(r.body, 936); }

  // Signs in and returns the "Cookie: ..." header of the administrator's session.
  std::string SignIn(const std::string& name = "admin", const std::string& password = "secret123") {
    HttpReply picture = client().Get("/admin/inc/code.asp");
    std::string cookie = "Cookie: OSTRAKANSESSION=" + picture.SessionCookie();
    std::string code = ReadVerifyCode(picture.body, ReadFile(root() / "admin/inc/body.Fix"));
    HttpReply login =
        client().Post("/admin/login.asp",
                      "username=" + name + "&password=" + password + "&verifyid=" + code, {cookie});
    EXPECT_NE(Text(login).find(u"location.replace('main.asp')"), std::u16string::npos)
        << ToUtf8(Text(login));
    if (!login.SessionCookie().empty()) cookie = "Cookie: OSTRAKANSESSION=" + login.SessionCookie();
    return cookie;
  }

  static inline TempDir* dir_ = nullptr;
  static inline engine::HttpServer* server_ = nullptr;
};

}  // namespace ostrakan::testing
