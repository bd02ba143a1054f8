// The video record pages against a real database file: entry, editing, the edit form, deleting
// and maintenance. The list is in list_pages_test.cpp.
#include "support/admin_pages.h"

namespace ostrakan {
namespace {

using namespace testing;

class RecordPages : public AdminPages {
 protected:
  // Posts the entry form (Class39), or the edit form (Class20) when `id` is given.
  PageRun Post(std::u16string title, std::u16string url, std::u16string content = u"",
               std::u16string sourceUrl = u"s.com", std::u16string id = u"new") {
    Keys form = {{u"title", title},     {u"content", content},      {u"url", url},
                 {u"source", u"源 站"}, {u"source_url", sourceUrl}, {u"id", id}};
    return Run(id == u"new" ? u"Ostrakan.Class39" : u"Ostrakan.Class20", 3, {}, form);
  }
  PageRun Edit(std::u16string id, std::u16string title, std::u16string url) {
    return Post(title, url, u"", u"s.com", id);
  }
  std::string Urls() {
    return Value("select group_concat(url) from (select url from db order by id) as t");
  }
};

TEST_F(RecordPages, ANewRecordIsStoredFilteredAndItsQuotesAreData) {
  EXPECT_EQ(Post(u" Tom & Jerry #1 100% ", u"http://www.a.com/1", u"",
                 u"http://y.com/'); delete from db; --")
                .text,
            Alert(u"添加成功！", u"location.replace('db_add.asp');"));
  EXPECT_EQ(Value("select title || '|' || url || '|' || source || '|' || source_url from db"),
            "Tom&Jerry#1100%|www.a.com/1|源站|y.com/'); delete from db; --");
  // An empty description is Null; the rest are the table's defaults.
  EXPECT_EQ(Value("select cast(content is null and image is null and click = 0 and "
                  "time > '2000-01-01' as integer) from db"),
            "1");
  ASSERT_TRUE(Post(std::u16string(20000, u'长'), u"x.com/' or '1'='1", std::u16string(20000, u'说'))
                  .completed);
  EXPECT_EQ(Value("select length(title) || '' || length(content) from db where id=2"),
            "2000020000");
  EXPECT_EQ(Urls(), "www.a.com/1,x.com/or1=1");
  EXPECT_EQ(site.log(), "");
}

TEST_F(RecordPages, AnAddressAlreadyStoredIsRefusedWithOrWithoutItsScheme) {
  ASSERT_TRUE(Post(u"一", u"www.a.com/1").completed);
  const std::u16string refusal = Alert(u"已经存在“www.a.com/1”这条记录！");
  PageRun run = Post(u"二", u"http://www.a.com/1");
  EXPECT_FALSE(run.completed);
  EXPECT_EQ(run.text, refusal);
  // The quotation marks go out as their GB2312 codes.
  EXPECT_TRUE(Holds(run.bytes, "\xA1\xB0www.a.com/1\xA1\xB1"));
  // Filtering comes before the test: blanks and quotes make no new address.
  EXPECT_EQ(Post(u"三", u" www.a.com/'1 ").text, refusal);
  EXPECT_EQ(Value("select group_concat(title) from db"), "一");
}

TEST_F(RecordPages, ARecordKeepsItsOwnAddressButCannotTakeAnother) {
  Sql(site.database(), "insert into db (id, url) values (1, 'v.com/1'), (2, 'v.com/2')");
  EXPECT_EQ(Edit(u"1", u"新标题", u"http://v.com/1").text, Alert(u"修改成功！"));
  EXPECT_EQ(Value("select title || source || source_url || cast(content is null as integer) from "
                  "db where id=1"),
            "新标题源站s.com1");
  PageRun run = Edit(u"1", u"抢占", u"v.com/2");
  EXPECT_FALSE(run.completed);
  EXPECT_EQ(run.text, Alert(u"已经存在“v.com/2”这条记录！"));
  // A free address is taken; the old one is free again.
  EXPECT_TRUE(Edit(u"1", u"搬家", u"v.com/new").completed);
  EXPECT_TRUE(Edit(u"2", u"二", u"v.com/1").completed);
  // The edit form opens the row whatever blanks surround its id.
  EXPECT_TRUE(Holds(Run(u"Ostrakan.Class61", 3, {{u"id", u" 2 "}}).text, u"value=\"二\""));
  EXPECT_EQ(Urls(), "v.com/new,v.com/1");
  EXPECT_EQ(site.log(), "");
}

TEST_F(RecordPages, ADeleteReturnsToTheListPageItCameFrom) {
  Sql(site.database(), "insert into db (id) values (1), (2), (3)");
  session->Set(u"url", Variant(u"db_list.asp?page=2"));
  auto remove = [&](const Keys& query) { return Run(u"Ostrakan.Class17", 3, query).text; };
  EXPECT_EQ(remove({{u"action", u"del"}, {u"id", u"3"}}),
            Alert(u"删除成功！", u"location.replace('db_list.asp?page=2');"));
  EXPECT_EQ(remove({{u"action", u"alldel"}, {u"id", u"1"}, {u"id", u"9"}}),
            Alert(u"批量删除成功！", u"location.replace('db_list.asp?page=2');"));
  EXPECT_EQ(Value("select group_concat(id) from db"), "2");
}

TEST_F(RecordPages, MaintenanceRemovesUntitledRecordsOrOneSourceSite) {
  Sql(site.database(),
      "insert into db (id, title, source_url) values (1, null, 'a.com/x'), (2, '', 'a.com/y'), "
      "(3, 't', 'www.src.com/list'), (4, 't', 'WWW.SRC.COM/other'), (5, 't', 'www.src.community'),"
      "(6, 't', 'mirror.com/www.src.com'), (7, 't', null)");
  auto maintain = [&](std::u16string action, std::u16string url = u"") {
    return Run(u"Ostrakan.Class29", 3, {{u"action", action}, {u"url", url}}).text;
  };
  auto remaining = [&] { return Value("select group_concat(id) from db"); };
  EXPECT_EQ(maintain(u"del"), Alert(u"数据删除成功！"));
  EXPECT_EQ(remaining(), "2,3,4,5,6,7");  // '' is a title
  EXPECT_EQ(maintain(u"del_url", u"http://www.src.com/"),
            Alert(u"来自www.src.com/的数据删除成功！"));
  EXPECT_EQ(remaining(), "2,5,6,7");
  // A quote neither breaks the statement nor widens the match, and stays inside the script.
  EXPECT_EQ(maintain(u"del_url", u"x' or '1'='1"),
            Alert(u"来自x\\' or \\'1\\'=\\'1的数据删除成功！"));
  // An address that is empty once "http://" is gone, or one with LIKE's signs, takes nothing
  // it does not name.
  for (const char16_t* url : {u"http://", u"%", u"www_src.com"}) maintain(u"del_url", url);
  EXPECT_EQ(maintain(u"del_url"), Alert(u"请输入来源网址！"));
  EXPECT_EQ(maintain(u"other"), u"");
  EXPECT_EQ(remaining(), "2,5,6,7");
  EXPECT_EQ(site.log(), "");
}

}  // namespace
}  // namespace ostrakan
