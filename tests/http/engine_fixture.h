// The real engine on an ephemeral loopback port, serving a small temporary site whose pages use
// a test component ("Test.Page") instead of the site's own components.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <memory>

#include "engine/http_server.h"
#include "frame/error_log.h"
#include "frame/escape.h"
#include "frame/site_page.h"
#include "http/http_client.h"
#include "platform/fs/atomic_file.h"
#include "platform/http/fetcher.h"
#include "platform/text/codepage.h"
#include "support/holds.h"
#include "support/page_harness.h"

namespace ostrakan::testing {

// Blocks a page file calls; errors follow the component convention (Guard) unless the block
// is meant to escape.
class TestPage : public SitePage {
 public:
  TestPage() : SitePage(u"\\admin\\test_page") {
    Describe<TestPage>([](Describer<TestPage>& m) {
      m.Block(u"Count", [] {
        Session& s = CurrentSession();
        const Variant n = Variant(s.Get(u"n").IsEmpty() ? 1 : CLng(s.Get(u"n")) + 1);
        s.Set(u"n", n);
        CurrentResponse().Write(u"n=" + HtmlText(CStr(n)));
      });
      m.Block(u"SignIn", [](TestPage& page) {
        CurrentSession().Set(TextOf(page.Admin_Session), Variant(u"admin"));
      });
      m.Block(u"Abandon", [] { CurrentSession().Abandon(); });
      m.Block(u"Stop", [] { EndResponse(); });
      m.Block(u"Redirect", [] {
        CurrentResponse().Redirect(TextOf(CurrentRequest().Item(u"to")));
        EndResponse();
      });
      m.Block(u"Header", [] { CurrentResponse().AddHeader(u"Content-Length", u"99999"); });
      // Replaces changing.asp as the server's own writes do (a rule file, a generated page).
      m.Block(u"Rewrite", [] {
        fs::WriteFileAtomic(ToUtf8(CurrentServer().MapPath(u"changing.asp")),
                            ToUtf8(TextOf(CurrentRequest().Item(u"text"))));
      });
      // Uses a megabyte of stack, as a regular expression over a long page can.
      m.Block(u"DeepStack", [] {
        volatile char buffer[1 << 20];
        for (size_t i = 0; i < sizeof buffer; i += 4096) buffer[i] = 1;
        CurrentResponse().Write(u"deep");
      });
      // Fails between Application.Lock and Unlock; the error is logged and swallowed.
      m.Block(u"LockAndFail", [] {
        CurrentApplication().Lock();
        throw std::runtime_error("failed while holding the application lock");
      });
      m.Block(u"LockedVisit", [] {
        Application& a = CurrentApplication();
        a.Lock();
        Variant n = Variant(a.Get(u"visits").IsEmpty() ? 1 : CLng(a.Get(u"visits")) + 1);
        a.Set(u"visits", n);
        a.Unlock();
        CurrentResponse().Write(u"visit " + HtmlText(CStr(n)));
      });
      // Fetches Request("url") with the default fetcher, as a gathering page does.
      m.Block(u"Fetch", [] {
        http::FetchResult r =
            http::DefaultFetcher()->Get(ToUtf8(TextOf(CurrentRequest().Item(u"url"))));
        CurrentResponse().Write(r.completed
                                    ? u"fetched " + HtmlText(FromUtf8(std::to_string(r.status)))
                                    : u"not fetched: " + HtmlText(FromUtf8(r.error)));
      });
      // A method without the block guard: its error escapes the component.
      m.Method(u"Crash",
               [](Args&) -> Variant { throw std::runtime_error("boom: escaped the component"); });
    });
  }
};

inline void WriteAnsi(const std::filesystem::path& file, std::u16string_view text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << text::Encode(text, 936);
}

class EngineTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir_ = new TempDir();
    root_ = dir_->path() / "site";
    WriteAnsi(root_ / "Setup.asp",
              u"<%\r\nWebSite_Title=\"测试站\"\r\nDB=\"data/site.db\"\r\n"
              u"Admin_Session=\"Test_Admin\"\r\n%>\r\n");
    WriteAnsi(root_ / "index.asp", u"<title><%= Setting(\"WebSite_Title\") %></title>");
    WriteAnsi(root_ / "echo.asp",
              u"q=[<%= Request.QueryString(\"q\") %>] f=[<%= Request.Form(\"f\") %>] "
              u"id=[<%= Request(\"id\") %>] m=[<%= Request.ServerVariables(\"REQUEST_METHOD\") %>] "
              u"url=[<%= Request.ServerVariables(\"URL\") %>] "
              u"ua=[<%= Request.ServerVariables(\"HTTP_USER_AGENT\") %>] "
              u"x=[<%= Request.ServerVariables(\"HTTP_X_TEST\") %>] "
              u"ip=[<%= Request.ServerVariables(\"REMOTE_ADDR\") %>]");
    for (auto [file, blocks] : {std::pair{"session", u"<% Count %>"},
                                {"signin", u"<% SignIn %>in"},
                                {"signout", u"<% Abandon %>out"},
                                {"end", u"before <% Stop %> after"},
                                {"redirect", u"<% Redirect %>"},
                                {"header", u"<% Header %>body"},
                                {"rewrite", u"<% Rewrite %>"},
                                {"fetch", u"<% Fetch %>"},
                                {"login", u"sign in"},
                                {"deep", u"<% DeepStack %>"},
                                {"crash", u"\n\n<% Crash %>"},
                                {"lock_fail", u"<% LockAndFail %>after"},
                                {"lock_visit", u"<% LockedVisit %>"}})
      WriteAnsi(root_ / "admin" / (file + std::string(".asp")),
                u"<%@ Component=\"Test.Page\" %><% InitFunction1 %>" + std::u16string(blocks));
    WriteAnsi(root_ / "admin/broken.asp", u"<html>\n<% Dim x %>\n</html>");
    WriteAnsi(root_ / "admin/rules_list.asp",
              u"<%\r\nSelect Case id\r\nCase 1\r\nweb=\"一号站\"\r\nurl=\"http://one/\"\r\n"
              u"Case 2\r\nweb=\"two\"\r\nEnd Select\r\n%>\r\n");
    WriteAnsi(root_ / "admin/index.asp", u"admin index");
    WriteAnsi(root_ / "admin/css/a.css", u"body{}");
    WriteAnsi(root_ / "admin/css/a b.css", u"p{}");
    WriteAnsi(root_ / "data/site.db", u"not served");
    WriteAnsi(dir_->path() / "secret.txt", u"outside");
    SetErrorLogPath(root_ / "data/PagebindLog.Log");

    server_ = StartServer().release();
  }

  // A server of the suite's site: eight page threads, a body of up to a megabyte, requests timed
  // out after 1.5 seconds (the stalled-client test waits this out); `change` changes them.
  static std::unique_ptr<engine::HttpServer> StartServer(
      const std::function<void(engine::ServerOptions&)>& change = [](engine::ServerOptions&) {}) {
    engine::ServerOptions options;
    options.siteRoot = root_;
    options.listen = "127.0.0.1:0";
    options.threads = 8;
    options.maxBodyBytes = 1 << 20;
    options.requestTimeoutMs = 1500;
    options.createComponent = [](std::u16string_view progId) -> std::shared_ptr<Component> {
      return IEquals(progId, u"Test.Page") ? std::make_shared<TestPage>() : nullptr;
    };
    change(options);
    return std::make_unique<engine::HttpServer>(options);
  }

  static void TearDownTestSuite() {
    delete server_;
    delete dir_;
  }

  HttpClient client() const { return HttpClient(server_->port()); }
  static std::u16string Text(const HttpReply& r) { return text::Decode(r.body, 936); }
  static std::string ErrorLog() { return ReadFile(root_ / "data/PagebindLog.Log"); }

  static inline TempDir* dir_ = nullptr;
  static inline std::filesystem::path root_;
  static inline engine::HttpServer* server_ = nullptr;
};

}  // namespace ostrakan::testing
