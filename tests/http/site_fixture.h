// The real site, made afresh by `ostrakan init` for every test and served on loopback, and an
// administrator who signs in as a browser does: reading the verify picture's digits.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <memory>
#include <sstream>

#include "engine/commands.h"
#include "engine/http_server.h"
#include "frame/error_log.h"
#include "frame/escape.h"
#include "http/http_client.h"
#include "platform/text/codepage.h"
#include "support/holds.h"
#include "support/page_harness.h"

namespace ostrakan::testing {

// The digits of a 40 x 10 verify picture, matched cell by cell against body.Fix (the pictures
// of 9 down to 0, 320 bytes each in rows of 32).
inline std::string ReadVerifyCode(const std::string& bmp, const std::string& font) {
  const size_t offset = static_cast<unsigned char>(bmp.at(10)) | bmp.at(11) << 8;  // 54
  std::string code;
  for (size_t cell = 0; cell < 4; ++cell) {
    for (size_t digit = 0; digit <= 9; ++digit) {
      size_t row = 0;
      while (row < 10 && bmp.compare(offset + row * 120 + cell * 30, 30, font,
                                     (9 - digit) * 320 + row * 32, 30) == 0)
        ++row;
      if (row == 10) code += static_cast<char>('0' + digit);
    }
  }
  return code;
}

// Percent-encodes the GBK bytes of a text, as a browser sends the form fields of a GB2312 page.
inline std::string GbkEscape(std::u16string_view text) {
  return ToUtf8(UrlQuery(text).text());
}

// What the ostrakan program said (standard output and error together) and its exit status.
struct CommandRun {
  int status = -1;
  std::string output;
};
// Runs the program with `args` (after "ostrakan", read by the shell) until it ends, or for 30
// seconds at most (a server that starts listening after all).
inline CommandRun Ostrakan(const std::string& args) {
  CommandRun run;
  FILE* pipe =
      popen(("timeout 30 " + std::string(OSTRAKAN_BINARY) + " " + args + " 2>&1").c_str(), "r");
  char buf[4096];
  while (size_t n = fread(buf, 1, sizeof buf, pipe)) run.output.append(buf, n);
  const int status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

class SiteTest : public ::testing::Test {
 protected:
  void SetUp() override { MakeSite(database_.address()); }
  // Makes the site with `ostrakan init`, its database at `address` (or an SQLite file), and
  // serves it.
  void MakeSite(std::optional<std::string> address) {
    std::ostringstream out, err;
    engine::InitOptions init{root(), SourceDir() / "site", "admin", "secret123", address};
    ASSERT_EQ(engine::RunInit(init, out, err), 0) << err.str();
    SetErrorLogPath(root() / "data/PagebindLog.Log");
    server_ = Serve();
  }
  // Another server of the site.
  std::unique_ptr<engine::HttpServer> Serve() const {
    engine::ServerOptions options;
    options.siteRoot = root();
    options.listen = "127.0.0.1:0";
    options.threads = 8;
    return std::make_unique<engine::HttpServer>(options);
  }

  std::filesystem::path root() const { return dir_.path() / "site"; }
  std::filesystem::path database() const { return root() / "data/ostrakan.db"; }
  std::string Value(const std::string& sql) const { return SqlValue(database(), sql); }
  std::string Log() const { return ReadFile(root() / "data/PagebindLog.Log"); }
  HttpClient client() const { return HttpClient(server_->port()); }
  static std::u16string Text(const HttpReply& r) { return text::Decode(r.body, 936); }

  // A verify picture drawn through `via`: its session ("Cookie: ...") and the code it shows.
  struct Picture {
    std::string cookie, code;
  };
  Picture Solve(const HttpClient& via) const {
    HttpReply r = via.Get("/admin/inc/code.asp");
    return {"Cookie: OSTRAKANSESSION=" + r.SessionCookie(),
            ReadVerifyCode(r.body, ReadFile(root() / "admin/inc/body.Fix"))};
  }
  static std::string SignInForm(const std::string& name, const std::string& password,
                                const std::string& code) {
    return "username=" + name + "&password=" + password + "&verifyid=" + code;
  }
  // Posts the administrator's sign-in form through `via`, with the picture's session and code.
  static HttpReply PostSignIn(const HttpClient& via, const Picture& p,
                              const std::string& password = "secret123") {
    return via.Post("/admin/login.asp", SignInForm("admin", password, p.code), {p.cookie});
  }
  // Signs in and returns the "Cookie: ..." header of the administrator's session.
  std::string SignIn() {
    HttpReply login = PostSignIn(client(), Solve(client()));
    EXPECT_TRUE(Holds(Text(login), u"location.replace('main.asp')"));
    return "Cookie: OSTRAKANSESSION=" + login.SessionCookie();
  }

  TempDir dir_;
  TestDatabase database_{TestDatabase::Empty{}};  // on PostgreSQL: the site's database
  std::unique_ptr<engine::HttpServer> server_;
};

}  // namespace ostrakan::testing
