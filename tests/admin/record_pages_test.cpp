// The video record pages against a real database file: the paged list, entry, editing,
// single and batch delete, and maintenance.
#include <gtest/gtest.h>

#include <functional>

#include "admin/registry.h"
#include "support/page_harness.h"

namespace ostrakan {
namespace {

using testing::RunBlocks;
using testing::Sql;
using testing::SqlValue;
using testing::TestRequest;
using testing::TestSite;

// What a page wrote, and whether it ran to its end.
struct PageRun {
  std::u16string text;
  std::string bytes;
  bool completed = false;
};

using Fill = std::function<void(Request&)>;

constexpr std::initializer_list<std::u16string_view> kThreeBlocks = {
    u"InitFunction1", u"InitFunction2", u"InitFunction3"};

const std::u16string kNotSignedIn =
    u"<Script>window.alert('您目前还没有登录或登录超时！');window.parent.location.replace("
    u"'index.asp');</Script>";
const std::u16string kMissing =
    u"<Script>window.alert('该记录不存在或错误！');history.go(-1);</Script>";

// The row that the list writes for a record made by AddRecords.
std::u16string Row(int id) {
  const std::u16string n = CStr(Variant(id));
  return u"<br><input name='id' type='checkbox' id='id' value='" + n +
         u"'> <a href='db_edit.asp?id=" + n + u"'>标题" + n + u"</a> [<a href='db_edit.asp?id=" +
         n + u"'>修改</a>][<a href='javascript:db_delete(" + n +
         u")'>删除</a>]<br><a href='http://v.com/" + n + u"' target='_blank'>v.com/" + n +
         u"</a> 来源：<a href='http://src.com' target='_blank'>源</a> 日期：2026-1-2 3:04:05<br>";
}

// Rows `from` down to `to`, newest first, as one page of the list.
std::u16string Rows(int from, int to) {
  std::u16string out;
  for (int id = from; id >= to; --id) out += Row(id);
  return out;
}

// Splits off the time line that ends every list page ("<br>0.001234 秒"), checking its form.
std::u16string WithoutTime(const std::u16string& text) {
  const std::u16string suffix = u" 秒";
  if (!text.ends_with(suffix)) {
    ADD_FAILURE() << "no time line: " << ToUtf8(text);
    return text;
  }
  size_t start = text.size() - suffix.size();
  while (start > 0 &&
         ((text[start - 1] >= u'0' && text[start - 1] <= u'9') || text[start - 1] == u'.'))
    --start;
  const std::u16string seconds = text.substr(start, text.size() - suffix.size() - start);
  EXPECT_TRUE(seconds.size() >= 8 && seconds[seconds.size() - 7] == u'.') << ToUtf8(seconds);
  EXPECT_EQ(text.substr(0, start).ends_with(u"<br>"), true) << ToUtf8(text);
  return text.substr(0, start >= 4 ? start - 4 : start);
}

class RecordPages : public ::testing::Test {
 protected:
  void SetUp() override { session->Set(u"Ostrakan_Admin", Variant(u"admin")); }

  PageRun Open(const char16_t* progId, std::initializer_list<std::u16string_view> blocks,
               const Fill& fill = {}) {
    TestRequest r(site, u"/admin/page.asp", session);
    if (fill) fill(r.request());
    PageRun run;
    {
      auto page = CreateComponent(progId);
      if (!page) throw std::runtime_error("no component");
      run.completed = RunBlocks(*page, blocks);
    }
    run.text = r.text();
    run.bytes = r.response().body();
    return run;
  }

  // The record list with the given query keys.
  PageRun List(const std::vector<std::pair<std::u16string, std::u16string>>& query = {}) {
    return Open(u"Ostrakan.Class30",
                {u"InitFunction1", u"InitFunction2", u"InitFunction3", u"InitFunction4"},
                [&](Request& r) {
                  for (const auto& [k, v] : query) r.queryString.Add(k, v);
                });
  }

  // Posts the entry form (Class39), or the edit form (Class20) when `id` is given.
  PageRun Post(const std::u16string& title, const std::u16string& content,
               const std::u16string& url, const std::u16string& source,
               const std::u16string& sourceUrl, const std::u16string* id = nullptr) {
    return Open(id ? u"Ostrakan.Class20" : u"Ostrakan.Class39", kThreeBlocks, [&](Request& r) {
      if (id) r.form.Add(u"id", *id);
      r.form.Add(u"title", title);
      r.form.Add(u"content", content);
      r.form.Add(u"url", url);
      r.form.Add(u"source", source);
      r.form.Add(u"source_url", sourceUrl);
    });
  }
  PageRun Edit(const std::u16string& id, const std::u16string& title, const std::u16string& url,
               const std::u16string& content = u"描述") {
    return Post(title, content, url, u"源站", u"src.com", &id);
  }

  // A request to db_ok.asp (Class17) with the given query keys, in order.
  PageRun Delete(const std::vector<std::pair<std::u16string, std::u16string>>& query) {
    return Open(u"Ostrakan.Class17", kThreeBlocks, [&](Request& r) {
      for (const auto& [k, v] : query) r.queryString.Add(k, v);
    });
  }

  // Records 1 .. n, all stored at the same moment.
  void AddRecords(int n) {
    std::string values;
    for (int i = 1; i <= n; ++i) {
      const std::string s = std::to_string(i);
      values += (i > 1 ? "," : "") + ("(" + s + ", '标题" + s + "', 'v.com/" + s +
                                      "', '源', 'src.com', '2026-01-02 03:04:05')");
    }
    Sql(site.database(),
        "insert into db (id, title, url, source, source_url, time) values " + values);
  }

  std::string Value(const std::string& sql) const { return SqlValue(site.database(), sql); }
  std::string Count() const { return Value("select count(*) from db"); }

  TestSite site;
  std::shared_ptr<Session> session = std::make_shared<Session>();
};

// ---- The record list -------------------------------------------------------------------------

TEST_F(RecordPages, AnEmptyTableShowsOnlyThePageTime) {
  PageRun run = List();
  EXPECT_TRUE(run.completed);
  EXPECT_EQ(WithoutTime(run.text), u"");
  EXPECT_EQ(CStr(session->Get(u"url")), u"db_list.asp?page=1");
  EXPECT_EQ(site.log(), "");
}

TEST_F(RecordPages, FortyRecordsMakeTwoFullPages) {
  AddRecords(40);
  const std::u16string lastPage =
      Rows(20, 1) +
      u"<br><a href='?page=1'>第一页</a> <a href='?page=1&db_count=40'>上一页</a> 下一页 最后一页 "
      u"共40条记录 页次：2/2页";

  EXPECT_EQ(WithoutTime(List().text),
            Rows(40, 21) +
                u"<br>第一页 上一页 <a href='?page=2&db_count=40'>下一页</a> "
                u"<a href='?page=2&db_count=40'>最后一页</a> 共40条记录 页次：1/2页");
  EXPECT_EQ(WithoutTime(List({{u"page", u"2"}, {u"db_count", u"40"}}).text), lastPage);
  EXPECT_EQ(CStr(session->Get(u"url")), u"db_list.asp?page=2");

  // Beyond the end: the last page, and the return address names it. Without a count in the
  // address the page counts again.
  EXPECT_EQ(WithoutTime(List({{u"page", u"4"}, {u"db_count", u"40"}}).text), lastPage);
  EXPECT_EQ(CStr(session->Get(u"url")), u"db_list.asp?page=2");
  EXPECT_EQ(WithoutTime(List({{u"page", u"9"}}).text), lastPage);
  // The page that would start right at the end is clamped to the last page too.
  EXPECT_EQ(WithoutTime(List({{u"page", u"3"}, {u"db_count", u"40"}}).text), lastPage);
  EXPECT_EQ(CStr(session->Get(u"url")), u"db_list.asp?page=2");

  for (const char16_t* low : {u"0", u"-7"}) {
    PageRun run = List({{u"page", low}});
    EXPECT_TRUE(WithoutTime(run.text).starts_with(Row(40))) << ToUtf8(low);
    EXPECT_NE(run.text.find(u"页次：1/2页"), std::u16string::npos);
    EXPECT_EQ(CStr(session->Get(u"url")), u"db_list.asp?page=1");
  }
  EXPECT_EQ(site.log(), "");
}

TEST_F(RecordPages, AStaleCountOffersPagesBeyondTheEnd) {
  AddRecords(25);
  // A count carried over from before records were deleted: page 5 lies past the rows.
  EXPECT_EQ(WithoutTime(List({{u"page", u"5"}, {u"db_count", u"100"}}).text),
            u"<br><a href='?page=1'>第一页</a> <a href='?page=4&db_count=100'>上一页</a> "
            u"下一页 最后一页 共100条记录 页次：5/5页");
  // Page 6 starts at the count itself: clamped to the count's last page, equally empty.
  EXPECT_EQ(WithoutTime(List({{u"page", u"6"}, {u"db_count", u"100"}}).text),
            u"<br><a href='?page=1'>第一页</a> <a href='?page=4&db_count=100'>上一页</a> "
            u"下一页 最后一页 共100条记录 页次：5/5页");
  EXPECT_EQ(CStr(session->Get(u"url")), u"db_list.asp?page=5");
  // The second page of the real rows still shows them, whatever the count says.
  EXPECT_TRUE(WithoutTime(List({{u"page", u"2"}, {u"db_count", u"100"}}).text)
                  .starts_with(Rows(5, 1) + u"<br>"));
}

TEST_F(RecordPages, ABadPageNumberIsLoggedBeforeAnyListOutput) {
  AddRecords(3);
  for (const char16_t* bad : {u"abc", u"99999"}) {  // not a number; beyond a 16-bit integer
    PageRun run = List({{u"page", bad}});
    EXPECT_TRUE(run.completed);
    EXPECT_EQ(run.text, u"") << ToUtf8(bad);
  }
  const std::string log = site.log();
  EXPECT_NE(log.find("\\admin\\db_list, InitFunction4: Type mismatch"), std::string::npos) << log;
  EXPECT_NE(log.find("\\admin\\db_list, InitFunction4: Overflow"), std::string::npos) << log;
}

// ---- Entry -----------------------------------------------------------------------------------

TEST_F(RecordPages, ANewRecordIsStoredFilteredWithTheTableDefaults) {
  PageRun run = Post(u" Tom & Jerry #1 100% ", u"", u"http://www.a.com/v/1.html", u"源 站",
                     u"http://src.com/ (list)");
  EXPECT_EQ(run.text,
            u"<Script>window.alert('添加成功！');location.replace('db_add.asp');</Script>");
  EXPECT_EQ(Value("select title from db"), "Tom&Jerry#1100%");
  EXPECT_EQ(Value("select url from db"), "www.a.com/v/1.html");
  EXPECT_EQ(Value("select content is null from db"), "1");  // an empty description is Null
  EXPECT_EQ(Value("select source from db"), "源站");
  EXPECT_EQ(Value("select source_url from db"), "src.com/ (list)");  // not filtered
  EXPECT_EQ(Value("select image is null and click = 0 and time is not null from db"), "1");
  EXPECT_EQ(site.log(), "");
}

TEST_F(RecordPages, AnAddressAlreadyStoredIsRefusedWithOrWithoutItsScheme) {
  ASSERT_TRUE(Post(u"一", u"", u"www.a.com/v/1.html", u"s", u"s.com").completed);
  const std::u16string refusal =
      u"<Script>window.alert('已经存在“www.a.com/v/1.html”这条记录！');history.go(-1);</Script>";
  PageRun run = Post(u"二", u"", u"http://www.a.com/v/1.html", u"s", u"s.com");
  EXPECT_FALSE(run.completed);
  EXPECT_EQ(run.text, refusal);
  // The quotation marks go out as their GB2312 codes.
  EXPECT_NE(run.bytes.find("\xA1\xB0www.a.com/v/1.html\xA1\xB1"), std::string::npos);
  // Filtering comes before the test: blanks and quotes make no new address.
  EXPECT_EQ(Post(u"三", u"", u" www.a.com/v/'1.html ", u"s", u"s.com").text, refusal);
  EXPECT_EQ(Count(), "1");
  EXPECT_EQ(Value("select title from db"), "一");
}

TEST_F(RecordPages, QuotesAndLongTextsStayInsideTheirFields) {
  const std::u16string title(20000, u'长');
  std::u16string content;
  for (int i = 0; i < 5000; ++i) content += u"说明#%";
  ASSERT_TRUE(
      Post(title, content, u"x.com/' or '1'='1", u"s", u"y.com/'); delete from db; --").completed);
  EXPECT_EQ(Value("select length(title) from db"), "20000");
  EXPECT_EQ(Value("select length(content) from db"), "20000");
  EXPECT_EQ(Value("select url from db"), "x.com/or1=1");
  EXPECT_EQ(Value("select source_url from db"), "y.com/'); delete from db; --");

  // The same address typed with its quotes again is the same address; nothing is deleted.
  EXPECT_FALSE(Post(u"t", u"", u"x.com/' or '1'='1", u"s", u"s").completed);
  EXPECT_EQ(Count(), "1");
  EXPECT_EQ(site.log(), "");
}

// ---- Editing ---------------------------------------------------------------------------------

TEST_F(RecordPages, ARecordKeepsItsOwnAddressButCannotTakeAnother) {
  AddRecords(2);
  PageRun run = Edit(u"1", u"新标题", u"http://v.com/1", u"");
  EXPECT_EQ(run.text, u"<Script>window.alert('修改成功！');history.go(-1);</Script>");
  EXPECT_EQ(Value("select title || '|' || url || '|' || source || '|' || source_url || '|' || "
                  "(content is null) from db where id=1"),
            "新标题|v.com/1|源站|src.com|1");

  run = Edit(u"1", u"抢占", u"v.com/2");
  EXPECT_FALSE(run.completed);
  EXPECT_EQ(run.text,
            u"<Script>window.alert('已经存在“v.com/2”这条记录！');history.go(-1);</Script>");
  EXPECT_EQ(Value("select title from db where id=1"), "新标题");

  // A free address is taken; the old one is free again.
  EXPECT_TRUE(Edit(u"1", u"搬家", u"v.com/new").completed);
  EXPECT_TRUE(Edit(u"2", u"二", u"v.com/1").completed);
  EXPECT_EQ(Value("select group_concat(url, ',') from (select url from db order by id)"),
            "v.com/new,v.com/1");
}

TEST_F(RecordPages, EditingRefusesABadOrMissingRecord) {
  AddRecords(1);
  for (const char16_t* bad : {u"", u"1 or 1=1", u"abc"}) {
    PageRun run = Edit(bad, u"x", u"v.com/x");
    EXPECT_FALSE(run.completed);
    EXPECT_EQ(run.text, u"非法ID参数") << ToUtf8(bad);
  }
  PageRun run = Edit(u"9", u"x", u"v.com/x");
  EXPECT_FALSE(run.completed);
  EXPECT_EQ(run.text, kMissing);
  EXPECT_EQ(Value("select title || url from db"), "标题1v.com/1");
  EXPECT_EQ(Count(), "1");
  EXPECT_EQ(site.log(), "");
}

TEST_F(RecordPages, TheEditFormShowsTheStoredValues) {
  Sql(site.database(),
      "insert into db (id, title, content, url, source, source_url) values "
      "(5, '标题&amp;', '一段描述', 'v.com/5', '来源', 'src.com/a')");
  auto form = [&](const char16_t* id) {
    return Open(u"Ostrakan.Class61", kThreeBlocks,
                [&](Request& r) { r.queryString.Add(u"id", id); });
  };
  PageRun run = form(u"5");
  ASSERT_TRUE(run.completed);
  const std::u16string& page = run.text;
  // Each control holds the stored value as it stands.
  for (const char16_t* part :
       {u"value=\"标题&amp;\"", u">一段描述</textarea>",
        u"name=\"url\" size=\"41\" maxlength=\"255\" value=\"v.com/5\"", u"value=\"来源\"",
        u"name=\"source_url\" size=\"41\" maxlength=\"255\" value=\"src.com/a\"",
        u"<input type=\"hidden\" name=\"id\" value=\"5\">"})
    EXPECT_NE(page.find(part), std::u16string::npos) << ToUtf8(part);

  EXPECT_EQ(form(u"abc").text, u"非法ID参数");
  EXPECT_EQ(form(u"").text, u"非法ID参数");
  Sql(site.database(), "delete from db where id=5");
  run = form(u"5");
  EXPECT_FALSE(run.completed);
  EXPECT_EQ(run.text, kMissing);
}

// ---- Deleting --------------------------------------------------------------------------------

TEST_F(RecordPages, DeletingOneRecordReturnsToTheListPageItCameFrom) {
  AddRecords(25);
  List({{u"page", u"2"}});
  PageRun run = Delete({{u"action", u"del"}, {u"id", u"3"}});
  EXPECT_EQ(run.text,
            u"<Script>window.alert('删除成功！');location.replace('db_list.asp?page=2');</Script>");
  EXPECT_EQ(Value("select count(*) from db where id=3"), "0");
  EXPECT_EQ(Count(), "24");

  // Two values read together are no number.
  run = Delete({{u"action", u"del"}, {u"id", u"4"}, {u"id", u"5"}});
  EXPECT_FALSE(run.completed);
  EXPECT_EQ(run.text, u"非法ID参数");
  EXPECT_EQ(Delete({{u"action", u"del"}}).text, u"非法ID参数");
  EXPECT_EQ(Delete({{u"action", u"del"}, {u"id", u"4;delete from db"}}).text, u"非法ID参数");
  // Unknown actions do nothing.
  EXPECT_EQ(Delete({{u"action", u"DEL"}, {u"id", u"4"}}).text, u"");
  EXPECT_EQ(Delete({{u"id", u"4"}}).text, u"");
  EXPECT_EQ(Count(), "24");
  EXPECT_EQ(site.log(), "");
}

TEST_F(RecordPages, ABatchDeleteStopsAtTheFirstBadValue) {
  AddRecords(6);
  session->Set(u"url", Variant(u"db_list.asp?page=1"));
  PageRun run = Delete({{u"action", u"alldel"}});
  EXPECT_FALSE(run.completed);
  EXPECT_EQ(run.text, u"<script>window.alert('没有选择删除的纪录！');history.go(-1);</script>");
  EXPECT_EQ(Delete({{u"action", u"alldel"}, {u"id", u""}}).text, run.text);

  run =
      Delete({{u"action", u"alldel"}, {u"id", u"1"}, {u"id", u"2"}, {u"id", u"x"}, {u"id", u"4"}});
  EXPECT_FALSE(run.completed);
  EXPECT_EQ(run.text, u"非法ID参数");
  EXPECT_EQ(Value("select group_concat(id) from db"), "3,4,5,6");

  run = Delete({{u"action", u"alldel"}, {u"id", u"3"}, {u"id", u" 5 "}, {u"id", u"99"}});
  EXPECT_EQ(run.text,
            u"<script>window.alert('批量删除成功！');location.replace('db_list.asp?page=1');"
            u"</script>");
  EXPECT_EQ(Value("select group_concat(id) from db"), "4,6");
}

// ---- Maintenance -----------------------------------------------------------------------------

TEST_F(RecordPages, MaintenanceRemovesUntitledRecordsOrOneSourceSite) {
  Sql(site.database(),
      "insert into db (id, title, source_url) values (1, null, 'a.com/x'), (2, '', 'a.com/y'), "
      "(3, 't', 'www.src.com/list'), (4, 't', 'WWW.SRC.COM/other'), (5, 't', 'www.src.community'),"
      "(6, 't', 'mirror.com/www.src.com'), (7, 't', null)");
  auto maintain = [&](std::vector<std::pair<std::u16string, std::u16string>> query) {
    return Open(u"Ostrakan.Class29", kThreeBlocks, [&](Request& r) {
      for (const auto& [k, v] : query) r.queryString.Add(k, v);
    });
  };
  EXPECT_EQ(maintain({{u"action", u"del"}}).text,
            u"<Script>window.alert('数据删除成功！');history.go(-1);</Script>");
  EXPECT_EQ(Value("select group_concat(id) from db"), "2,3,4,5,6,7");  // '' is a title

  EXPECT_EQ(maintain({{u"action", u"del_url"}, {u"url", u"http://www.src.com/"}}).text,
            u"<Script>window.alert('来自www.src.com/的数据删除成功！');history.go(-1);</Script>");
  EXPECT_EQ(Value("select group_concat(id) from db"), "2,5,6,7");

  // A quote in the address neither breaks the statement nor widens the match.
  PageRun run = maintain({{u"action", u"del_url"}, {u"url", u"x' or '1'='1"}});
  EXPECT_TRUE(run.completed);
  EXPECT_EQ(run.text,
            u"<Script>window.alert('来自x\\' or \\'1\\'=\\'1的数据删除成功！');history.go(-1);"
            u"</Script>");
  EXPECT_EQ(Value("select group_concat(id) from db"), "2,5,6,7");

  // An address that is empty once "http://" is gone, or one with LIKE's signs, takes nothing
  // it does not name.
  for (const char16_t* url : {u"", u"http://", u"%", u"www_src.com"}) {
    maintain({{u"action", u"del_url"}, {u"url", url}});
    EXPECT_EQ(Value("select group_concat(id) from db"), "2,5,6,7") << ToUtf8(url);
  }
  EXPECT_EQ(maintain({{u"action", u"del_url"}, {u"url", u""}}).text,
            u"<Script>window.alert('请输入来源网址！');history.go(-1);</Script>");

  EXPECT_EQ(maintain({{u"action", u"other"}}).text, u"");
  EXPECT_EQ(Count(), "4");
  EXPECT_EQ(site.log(), "");
}

TEST_F(RecordPages, EveryRecordPageRefusesAVisitorWhoIsNotSignedIn) {
  AddRecords(2);
  session->Remove(u"Ostrakan_Admin");
  const std::vector<std::pair<const char16_t*, std::vector<std::u16string>>> pages = {
      {u"Ostrakan.Class17", {u"action=del", u"id=1"}},
      {u"Ostrakan.Class17", {u"action=alldel", u"id=2"}},
      {u"Ostrakan.Class19", {}},
      {u"Ostrakan.Class20", {}},
      {u"Ostrakan.Class28", {}},
      {u"Ostrakan.Class29", {u"action=del_url", u"url=src.com"}},
      {u"Ostrakan.Class30", {}},
      {u"Ostrakan.Class39", {}},
      {u"Ostrakan.Class61", {u"id=1"}}};
  for (const auto& [progId, query] : pages) {
    PageRun run =
        Open(progId, {u"InitFunction1", u"InitFunction2", u"InitFunction3"}, [&](Request& r) {
          for (const auto& pair : query) {
            size_t eq = pair.find(u'=');
            r.queryString.Add(pair.substr(0, eq), pair.substr(eq + 1));
          }
          r.form.Add(u"id", u"1");
          r.form.Add(u"url", u"new.com");
        });
    EXPECT_FALSE(run.completed) << ToUtf8(progId);
    EXPECT_EQ(run.text, kNotSignedIn) << ToUtf8(progId);
  }
  EXPECT_EQ(Count(), "2");
  EXPECT_EQ(Value("select group_concat(url) from db"), "v.com/1,v.com/2");
}

}  // namespace
}  // namespace ostrakan
