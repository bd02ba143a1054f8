// Runs administration page components against a fresh test site with a real database, signed
// in as "admin" unless a test replaces the session; and reads what they wrote.
#pragma once

#include <gtest/gtest.h>

#include "admin/registry.h"
#include "support/holds.h"
#include "support/page_harness.h"

namespace ostrakan::testing {

using Keys = std::vector<std::pair<std::u16string, std::u16string>>;

struct PageRun {
  std::u16string text;
  std::string bytes;       // as sent, in the page's code page
  bool completed = false;  // false when a block ended the response
  int status = 200;
  std::string location;  // the Location header
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

  // Runs InitFunction1 .. InitFunction<blocks> of the page with the query string, the form and
  // the properties the page file sets; the first block gets the site's settings followed by
  // `more` (an ID rule's fields).
  PageRun Run(const char16_t* progId, int blocks, const Keys& query = {}, const Keys& form = {},
              const Keys& properties = {}, const std::vector<std::u16string>& more = {}) {
    TestRequest r(site, pagePath, session);
    for (const auto& [key, value] : query) r.request().queryString.Add(key, value);
    for (const auto& [key, value] : form) r.request().form.Add(key, value);
    auto page = CreateComponent(progId);
    for (const auto& [key, value] : properties) page->SetProperty(key, Variant(value));
    std::vector<std::u16string> names;
    for (int i = 1; i <= blocks; ++i) names.push_back(u"InitFunction" + CStr(Variant(i)));
    PageRun run;
    run.completed = RunBlocks(*page, {names.begin(), names.end()}, more);
    run.text = r.text();
    run.bytes = r.response().body();
    run.status = r.response().StatusCode();
    for (const auto& [name, value] : r.response().Headers())
      if (name == "Location") run.location = value;
    return run;
  }
  std::string Value(const std::string& sql) const { return SqlValue(site.database(), sql); }
  std::u16string ReturnUrl() const { return TextOf(session->Get(u"url")); }
  // Adds a category and returns its id.
  int AddCategory(const std::string& name, int parent = 0, int letter = 0) {
    Sql(site.database(), "insert into sort (sort, sort_id, alphabetical_id) values ('" + name +
                             "', " + std::to_string(parent) + ", " + std::to_string(letter) + ")");
    return std::stoi(Value("select max(id) from sort"));
  }

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

// The ids of the check boxes in a page, in page order.
inline std::vector<int> Ids(const std::u16string& text) {
  std::vector<int> ids;
  for (size_t at = text.find(u"name='id'"); at != std::u16string::npos;
       at = text.find(u"name='id'", at + 1)) {
    size_t value = text.find(u"value='", at) + 7;
    ids.push_back(std::stoi(ToUtf8(text.substr(value, text.find(u'\'', value) - value))));
  }
  return ids;
}

// Occurrences of `needle` in `text`.
inline size_t Count(const std::u16string& text, std::u16string_view needle) {
  size_t n = 0;
  for (size_t at = text.find(needle); at != std::u16string::npos; at = text.find(needle, at + 1))
    ++n;
  return n;
}

}  // namespace ostrakan::testing
