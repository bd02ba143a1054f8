// Runs administration page components against a fresh test site, signed in as "admin" unless a
// test replaces the session.
#pragma once

#include <gtest/gtest.h>

#include "admin/registry.h"
#include "support/list_text.h"
#include "support/page_harness.h"

namespace ostrakan::testing {

using Keys = std::vector<std::pair<std::u16string, std::u16string>>;

struct PageRun {
  std::u16string text;
  std::string bytes;       // as sent, in the page's code page
  bool completed = false;  // false when a block ended the response
};

// The script a page answers with: an alert, then going back or `then`.
inline std::u16string Alert(std::u16string_view text,
                            std::u16string_view then = u"history.go(-1);") {
  return u"<Script>window.alert('" + std::u16string(text) + u"');" + std::u16string(then) +
         u"</Script>";
}
inline const std::u16string kNotSignedIn =
    Alert(u"您目前还没有登录或登录超时！", u"window.parent.location.replace('index.asp');");
inline const std::u16string kMissing = Alert(u"该记录不存在或错误！");
inline const std::u16string kBadId = u"非法ID参数";

class AdminPages : public ::testing::Test {
 protected:
  AdminPages() { session->Set(u"Ostrakan_Admin", Variant(u"admin")); }

  // Runs InitFunction1 .. InitFunction<blocks> of the page with the query string and form, the
  // first with the site's settings followed by `more` (an ID rule's fields).
  PageRun Run(const char16_t* progId, int blocks, const Keys& query = {}, const Keys& form = {},
              const std::vector<std::u16string>& more = {}) {
    TestRequest r(site, pagePath, session);
    for (const auto& [key, value] : query) r.request().queryString.Add(key, value);
    for (const auto& [key, value] : form) r.request().form.Add(key, value);
    PageRun run;
    try {
      auto page = CreateComponent(progId);
      for (int i = 1; i <= blocks; ++i) {
        Component::Args args;
        if (i == 1 && page->Arity(u"InitFunction1") >= kSettingCount) args = Settings();
        if (i == 1) args.insert(args.end(), more.begin(), more.end());
        page->Invoke(u"InitFunction" + CStr(Variant(i)), args);
      }
      run.completed = true;
    } catch (const ResponseEnded&) {
    }
    run.text = r.text();
    run.bytes = r.response().body();
    return run;
  }
  std::string Value(const std::string& sql) const { return SqlValue(site.database(), sql); }
  std::u16string ReturnUrl() const { return TextOf(session->Get(u"url")); }

  TestSite site;
  std::shared_ptr<Session> session = std::make_shared<Session>();
  std::u16string pagePath = u"/admin/page.asp";  // the page's own address, for MapPath
};

// ids from `high` down to `low`.
inline std::vector<int> Descending(int high, int low) {
  std::vector<int> ids;
  for (int id = high; id >= low; --id) ids.push_back(id);
  return ids;
}

}  // namespace ostrakan::testing
