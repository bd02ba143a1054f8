// A signed-in administrator running the category and generation pages against a temporary site
// with a real SQLite database.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "admin/registry.h"
#include "support/page_harness.h"

namespace ostrakan::testing {

using Fields = std::vector<std::pair<std::u16string, std::u16string>>;

class CategoryPages : public ::testing::Test {
 protected:
  void SetUp() override { session->Set(u"Ostrakan_Admin", Variant(u"admin")); }

  struct Run {
    std::u16string text;
    bool ranToEnd;
    int status;
    std::string location;  // the Location header
  };
  // Runs InitFunction1 .. InitFunction<blocks> of the component with the query string, the
  // form and the properties the page file would set.
  Run Page(const char16_t* progId, int blocks, const Fields& query = {}, const Fields& form = {},
           const Fields& properties = {}) {
    TestRequest r(site, u"/admin/page.asp", session);
    for (const auto& [k, v] : query) r.request().queryString.Add(k, v);
    for (const auto& [k, v] : form) r.request().form.Add(k, v);
    auto page = CreateComponent(progId);
    EXPECT_TRUE(page) << ToUtf8(progId);
    for (const auto& [k, v] : properties) page->SetProperty(k, Variant(v));
    bool ranToEnd = true;
    for (int b = 1; b <= blocks && ranToEnd; ++b)
      ranToEnd = RunBlocks(*page, {u"InitFunction" + FromUtf8(std::to_string(b))});
    page.reset();
    Run run{r.text(), ranToEnd, r.response().StatusCode(), ""};
    for (const auto& [name, value] : r.response().Headers())
      if (name == "Location") run.location = value;
    return run;
  }

  // Adds a category and returns its id.
  int AddCategory(const std::string& name, int parent = 0, int letter = 0) {
    Sql(site.database(), "insert into sort (sort, sort_id, alphabetical_id) values ('" + name +
                             "', " + std::to_string(parent) + ", " + std::to_string(letter) + ")");
    return std::stoi(Value("select max(id) from sort"));
  }
  std::string Value(const std::string& sql) { return SqlValue(site.database(), sql); }
  // The names of the categories (those matching `where`), in table order.
  std::string Names(const std::string& where = "1") {
    return Value("select group_concat(sort, '|') from (select sort from sort where " + where +
                 " order by id)");
  }

  TestSite site;
  std::shared_ptr<Session> session = std::make_shared<Session>();
};

// Occurrences of `needle` in `text`.
inline size_t Count(const std::u16string& text, std::u16string_view needle) {
  size_t n = 0;
  for (size_t at = text.find(needle); at != std::u16string::npos; at = text.find(needle, at + 1))
    ++n;
  return n;
}

}  // namespace ostrakan::testing
