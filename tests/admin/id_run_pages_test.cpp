// The ID-site test page and the ID gathering run, with pages served from memory and the
// records they would store collected: what each page shows, fetches and stores, step by step.
#include <gtest/gtest.h>

#include <map>

#include "admin/registry.h"
#include "gathering/id_page_source.h"
#include "support/page_harness.h"

namespace ostrakan {
namespace {

using gathering::IdRecord;
using testing::SqlValue;
using testing::TestRequest;
using testing::TestSite;

class MemoryPages : public gathering::PageSource {
 public:
  std::u16string Fetch(std::u16string_view url, std::u16string_view charset) override {
    fetched.emplace_back(url);
    EXPECT_EQ(charset, u"gb2312");
    auto it = pages.find(std::u16string(url));
    return it == pages.end() ? u"" : it->second;
  }
  std::map<std::u16string, std::u16string> pages;
  std::vector<std::u16string> fetched;
};

class CollectedRecords : public gathering::IdStore {
 public:
  void Save(ado::Connection& conn, const IdRecord& record) override {
    EXPECT_EQ(conn.State(), 1);
    saved.push_back(record);
  }
  std::vector<IdRecord> saved;
};

// The rule's nine fields as the rule file hands them on.
std::vector<std::u16string> RuleFields(std::u16string titleStart = u"<h1>") {
  return {u"影视站", u"http://v.example/",  u"http://127.0.0.1/html/[id].html",
          u"gb2312", u"<p class=\"none\">", std::move(titleStart),
          u"</h1>",  u"<div class=\"d\">",  u"</div>"};
}

std::u16string Address(int id) {
  return u"http://127.0.0.1/html/" + CStr(Variant(id)) + u".html";
}

struct PageRun {
  std::u16string text;
  bool completed = false;
};

class IdRunPages : public ::testing::Test {
 protected:
  void SetUp() override {
    session->Set(u"Ostrakan_Admin", Variant(u"admin"));
    gathering::UseIdGatheringServices(pages, store);
    pages->pages[Address(1)] = u"<html><H1>Hello World</H1><div class=\"d\">Other</div></html>";
    pages->pages[Address(2)] = u"<html><p class=\"none\">没有数据</p></html>";
    pages->pages[Address(4)] = u"<h1>Hello <i>World</i></h1>";
    testing::Sql(site.database(),
                 "insert into gather_id_web (id, web, range) values (7, '影<视>', '');"
                 "insert into gather_id_web (id, web, range) values (8, 'other', 'x');");
  }
  void TearDown() override { gathering::UseIdGatheringServices(nullptr, nullptr); }

  // Runs InitFunction1 with the settings and the rule's fields, then the named blocks.
  PageRun Run(const char16_t* progId,
              const std::vector<std::pair<std::u16string, std::u16string>>& query,
              std::initializer_list<std::u16string_view> more = {},
              const std::vector<std::u16string>& rule = RuleFields()) {
    TestRequest r(site, u"/admin/page.asp", session);
    for (const auto& [k, v] : query) r.request().queryString.Add(k, v);
    PageRun run;
    {
      auto page = CreateComponent(progId);
      try {
        Component::Args args = testing::Settings();
        for (const auto& f : rule) args.emplace_back(f);
        page->Invoke(u"InitFunction1", args);
        for (auto name : more) {
          Component::Args none;
          page->Invoke(name, none);
        }
        run.completed = true;
      } catch (const ResponseEnded&) {
      }
    }
    run.text = r.text();
    return run;
  }
  PageRun Verify(const std::u16string& from, const std::u16string& to,
                 const std::vector<std::u16string>& rule = RuleFields()) {
    return Run(u"Ostrakan.Class43",
               {{u"id", u"7"}, {u"Action", u"ok"}, {u"ID_Start", from}, {u"ID_End", to}},
               {u"InitFunction2", u"InitFunction3"}, rule);
  }
  PageRun Step(const std::u16string& id, const std::u16string& from, const std::u16string& to,
               const std::u16string& dbNum = u"",
               const std::vector<std::u16string>& rule = RuleFields()) {
    std::vector<std::pair<std::u16string, std::u16string>> query = {
        {u"ID", id}, {u"ID_Start", from}, {u"ID_End", to}};
    if (!dbNum.empty()) query.emplace_back(u"DB_Num", dbNum);
    return Run(u"Ostrakan.Class53", query, {}, rule);
  }
  std::string Range(int id) {
    return SqlValue(site.database(),
                    "select range from gather_id_web where id=" + std::to_string(id));
  }

  TestSite site;
  std::shared_ptr<Session> session = std::make_shared<Session>();
  std::shared_ptr<MemoryPages> pages = std::make_shared<MemoryPages>();
  std::shared_ptr<CollectedRecords> store = std::make_shared<CollectedRecords>();
};

TEST_F(IdRunPages, VerifyShowsEachIdWithoutStoring) {
  PageRun run = Verify(u"1", u"4");
  EXPECT_TRUE(run.completed);
  EXPECT_EQ(run.text, u"hello world<br>hello world<br>" + Address(1) + u"<br><br>" +
                          u"找不到相关数据<br>" + Address(2) + u"<br><br>" +
                          // A page that could not be fetched is an entry with empty texts.
                          u"<br><br>" + Address(3) + u"<br><br>" +
                          // A tag inside the title markers: no title.
                          u"<br><br>" + Address(4) + u"<br><br>" + u"影视站" + u"7");
  EXPECT_TRUE(store->saved.empty());
  EXPECT_EQ(site.log(), "");
  // Without Action=ok only the form is shown; a start above the end fetches nothing.
  pages->fetched.clear();
  EXPECT_EQ(Run(u"Ostrakan.Class43", {{u"id", u"7"}}, {u"InitFunction2"}).text, u"影视站");
  EXPECT_EQ(Verify(u"5", u"4").text, u"影视站7");
  EXPECT_TRUE(pages->fetched.empty());
}

TEST_F(IdRunPages, VerifyLogsABadMarkerOrRangeAndTheFormStillShows) {
  PageRun run = Verify(u"1", u"2", RuleFields(u"<h1>("));
  EXPECT_TRUE(run.completed);
  EXPECT_EQ(run.text, u"影视站7");
  EXPECT_NE(site.log().find("\\admin\\gather_id_web_verify, InitFunction1: Syntax error in "
                            "regular expression"),
            std::string::npos);
  pages->fetched.clear();
  run = Verify(u"a", u"2");
  EXPECT_EQ(run.text, u"影视站7");
  EXPECT_NE(site.log().find("InitFunction1: Type mismatch"), std::string::npos);
  EXPECT_TRUE(pages->fetched.empty());
}

TEST_F(IdRunPages, AMarkerThatRunsAwayOnALargePageIsLoggedAndTheRunStops) {
  pages->pages[Address(1)] = std::u16string(1 << 20, u'a');
  PageRun run = Step(u"7", u"1", u"3", u"", RuleFields(u"(a|aa)*<h1>"));
  EXPECT_TRUE(run.completed);
  EXPECT_EQ(run.text, u"正在采集第 1 页<br>还乘余 2 页等待处理...");  // no next step
  EXPECT_NE(site.log().find("\\admin\\gather_id_db_ok, InitFunction1: Out of stack space"),
            std::string::npos);
  EXPECT_TRUE(store->saved.empty());
}

TEST_F(IdRunPages, VerifyEscapesWhatThePagesAndTheRequestBring) {
  pages->pages[Address(1)] = u"<h1>a&amp;b</h1>";
  PageRun run =
      Run(u"Ostrakan.Class43",
          {{u"id", u"7\"><script>"}, {u"Action", u"ok"}, {u"ID_Start", u"1"}, {u"ID_End", u"1"}},
          {u"InitFunction3"});
  EXPECT_EQ(run.text,
            u"a&amp;amp;b<br>a&amp;amp;b<br>" + Address(1) + u"<br><br>7&quot;&gt;&lt;script&gt;");
}

TEST_F(IdRunPages, AStepStoresItsIdAndLoadsTheNext) {
  PageRun run = Step(u"7", u"1", u"3");
  EXPECT_TRUE(run.completed);
  EXPECT_EQ(run.text,
            u"正在采集第 1 页<br>还乘余 2 页等待处理..."
            u"<Script Language='JavaScript'>function Next_Page(){window.opener=null;location."
            u"replace('gather_id_db_ok.asp?ID=7&ID_Start=2&DB_Num=1&ID_End=3');}"
            u"setTimeout('Next_Page()',1000)</Script>");
  ASSERT_EQ(store->saved.size(), 1u);
  const IdRecord& r = store->saved[0];
  EXPECT_EQ(r.title, u"hello world");
  EXPECT_EQ(r.content, u"hello world");
  EXPECT_EQ(r.url, u"127.0.0.1/html/1.html");
  EXPECT_EQ(r.source, u"影视站");
  EXPECT_EQ(r.source_url, u"v.example/");
  EXPECT_EQ(Range(7), "");

  // A page without data stores nothing and the run goes on.
  run = Step(u"7", u"2", u"3", u"1");
  EXPECT_NE(run.text.find(u"还乘余 1 页等待处理...<br>第 2 页找不到相关数据<Script"),
            std::u16string::npos);
  EXPECT_NE(run.text.find(u"ID_Start=3&DB_Num=2&ID_End=3"), std::u16string::npos);
  EXPECT_EQ(store->saved.size(), 1u);
  EXPECT_EQ(site.log(), "");
}

TEST_F(IdRunPages, TheLastStepWritesTheRangeAndStoresNothing) {
  // Start 1, end 3: the request for 3 writes 3 - 2 = 1 as the start of the range.
  PageRun run = Step(u"7", u"3", u"3", u"2");
  EXPECT_EQ(Range(7), "1 - 3");
  EXPECT_EQ(Range(8), "x");
  EXPECT_TRUE(run.text.starts_with(
      u"<Script>window.alert('采集完成！');location.replace('gather_list_db.asp?ID=7');"
      u"</Script>正在采集第 3 页<br>还乘余 0 页等待处理..."));
  EXPECT_EQ(run.text.find(u"Next_Page"), std::u16string::npos);
  EXPECT_EQ(pages->fetched, std::vector<std::u16string>{Address(3)});  // fetched, not stored
  EXPECT_TRUE(store->saved.empty());
  EXPECT_NE(site.log().find("\\admin\\gather_id_db_ok, InitFunction1: Object required"),
            std::string::npos);

  // Start 5, end 5 on the first request: 5 - 0.
  Step(u"7", u"5", u"5");
  EXPECT_EQ(Range(7), "5 - 5");
  EXPECT_TRUE(store->saved.empty());
}

TEST_F(IdRunPages, RequestTextNeverReachesTheStatementsOrTheScript) {
  PageRun run = Step(u"7 or 1=1", u"4", u"4");
  EXPECT_EQ(Range(7), "");
  EXPECT_EQ(Range(8), "x");
  EXPECT_NE(site.log().find("InitFunction1: Syntax error in UPDATE statement."), std::string::npos);
  run = Step(u"7');alert(1);('", u"1", u"3");
  EXPECT_NE(run.text.find(u"ID=7%27%29%3Balert%281%29%3B%28%27&ID_Start=2"), std::u16string::npos);
  run = Step(u"7", u"<b>1", u"3");
  EXPECT_EQ(run.text.find(u"<b>"), std::u16string::npos);
}

TEST_F(IdRunPages, TestAndStepPagesCarryGetTextAndFiltration) {
  TestRequest r(site, u"/admin/page.asp", session);
  for (const char16_t* progId : {u"Ostrakan.Class43", u"Ostrakan.Class53"}) {
    auto page = CreateComponent(progId);
    Component::Args cut = {Variant(u"<H1>Big Film</H1>"), Variant(u"<h1>"), Variant(u"</h1>")};
    EXPECT_EQ(TextOf(page->Invoke(u"GetText", cut)), u"big film");
    Component::Args clean = {Variant(u" <b>x</b>&nbsp;\"y\" ")};
    EXPECT_EQ(TextOf(page->Invoke(u"Filtration", clean)), u"xy");
    Component::Args bad = {Variant(u"x"), Variant(u"("), Variant(u"")};
    EXPECT_EQ(page->Invoke(u"GetText", bad).type(), VarType::Empty);
  }
  EXPECT_NE(site.log().find("\\admin\\gather_id_db_ok, GetText: Syntax error"), std::string::npos);
}

TEST_F(IdRunPages, StartPageChecksTheRule) {
  auto start = [&](const std::u16string& id) {
    TestRequest r(site, u"/admin/page.asp", session);
    auto page = CreateComponent(u"Ostrakan.Class52");
    page->SetProperty(u"id", Variant(id));
    testing::RunBlocks(*page, {u"InitFunction1", u"InitFunction2", u"InitFunction3",
                               u"InitFunction4", u"InitFunction5"});
    return r.text();
  };
  EXPECT_EQ(start(u"x"), u"非法ID参数");
  EXPECT_EQ(start(u""), u"非法ID参数");
  EXPECT_EQ(start(u"99"), u"<Script>window.alert('该记录不存在或错误！');history.go(-1);</Script>");
  EXPECT_EQ(start(u"7"), u"影&lt;视&gt;7");
}

}  // namespace
}  // namespace ostrakan
