// The pages that drive generation (one generator frame per page to build), the lists of what
// can be generated, and the public click-through goto.asp.
#include <gtest/gtest.h>

#include "support/category_fixture.h"
#include "support/list_text.h"

namespace ostrakan {
namespace {

using testing::Count;
using testing::Fields;

const std::initializer_list<std::u16string_view> kThree = {u"InitFunction1", u"InitFunction2",
                                                           u"InitFunction3"};

// The generator addresses of the frames, in page order ("one:2", "two:5" ...).
std::vector<std::string> Frames(const std::u16string& text) {
  std::vector<std::string> out;
  for (size_t at = text.find(u"<iframe"); at != std::u16string::npos;
       at = text.find(u"<iframe", at + 1)) {
    const size_t src = text.find(u"src=\"create_sort_", at) + 17;
    const std::u16string address = text.substr(src, text.find(u'"', src) - src);
    out.push_back(ToUtf8(address.substr(0, 3)) + ":" +
                  ToUtf8(address.substr(address.find(u"id=") + 3)));
  }
  return out;
}

class DriverPages : public testing::CategoryPages {
 protected:
  // Two top-level categories, the second with a child hidden from the letter lists.
  void TwoTrees() {
    AddCategory("电影");          // 1
    AddCategory("电视");          // 2
    AddCategory("动作", 1, 1);    // 3
    AddCategory("无字母", 2, 0);  // 4
    AddCategory("喜剧", 1, 2);    // 5
  }
};

TEST_F(DriverPages, WholeSiteFramesFollowEachTopLevelFrameWithItsSubCategories) {
  EXPECT_EQ(Page(u"Ostrakan.Class58", kThree).text, u"");
  TwoTrees();
  const std::u16string text = Page(u"Ostrakan.Class58", kThree).text;
  EXPECT_EQ(Frames(text), (std::vector<std::string>{"one:1", "two:3", "two:5", "one:2", "two:4"}));
  EXPECT_NE(text.find(u"<iframe name=\"html\" frameborder=\"0\" width=\"100%\" height=\"25\" "
                      u"scrolling=\"no\" src=\"create_sort_one_ok.asp?id=1\"></iframe>"),
            std::u16string::npos);
}

TEST_F(DriverPages, TickedCategoriesGetTheirFramesAndBadValuesGoToTheGenerator) {
  TwoTrees();
  Run run = Page(u"Ostrakan.Class27", kThree, {}, {{u"id", u"2"}, {u"id", u"1"}});
  EXPECT_EQ(Frames(run.text),
            (std::vector<std::string>{"one:2", "two:4", "one:1", "two:3", "two:5"}));
  run = Page(u"Ostrakan.Class27", kThree, {}, {{u"id", u"1 or 1=1\"><b>"}});
  EXPECT_EQ(Frames(run.text), (std::vector<std::string>{"one:1 or 1=1&quot;&gt;&lt;b&gt;"}));
  EXPECT_NE(site.log().find("create_sort_one_instruction, create_sort_two: Type mismatch"),
            std::string::npos);
  EXPECT_TRUE(Frames(Page(u"Ostrakan.Class27", kThree).text).empty());

  run = Page(u"Ostrakan.Class57", {u"InitFunction1", u"InitFunction2"},
             {{u"id", u"5"}, {u"id", u"3"}});
  EXPECT_EQ(Frames(run.text), (std::vector<std::string>{"two:5", "two:3"}));
}

TEST_F(DriverPages, GenerationListsOfferEachCategoryWithItsOwnGenerator) {
  for (int i = 0; i < 7; ++i) AddCategory("类" + std::to_string(i));
  AddCategory("子", 1, 2);
  const std::initializer_list<std::u16string_view> four = {u"InitFunction1", u"InitFunction2",
                                                           u"InitFunction3", u"InitFunction4"};
  std::u16string text = Page(u"Ostrakan.Class22", four).text;
  EXPECT_EQ(Count(text, u"<table"), 3u);
  EXPECT_EQ(testing::Ids(text), (std::vector<int>{1, 2, 3, 4, 5, 6, 7}));
  EXPECT_NE(text.find(u"<input name='id' type='checkbox' id='id' value='1'><a "
                      u"href='create_sort_list.asp?sort=类0&sort_id=1'>类0</a> [<a "
                      u"href='create_sort_one_ok.asp?id=1' target='_blank'>生成HTML</a>]"),
            std::u16string::npos);
  EXPECT_EQ(TextOf(session->Get(u"url")), u"sort_manage.asp");

  const std::initializer_list<std::u16string_view> five = {
      u"InitFunction1", u"InitFunction2", u"InitFunction3", u"InitFunction4", u"InitFunction5"};
  text = Page(u"Ostrakan.Class56", five, {{u"sort", u"类0"}, {u"sort_id", u"1"}}).text;
  EXPECT_EQ(Count(text, u"<td width=\"25\" align=\"center\" bgcolor=\"#ECE9D8\"><b>"), 26u);
  EXPECT_NE(text.find(u"子 [<a href='create_sort_two_ok.asp?id=8' target='_blank'>生成HTML</a>]"),
            std::u16string::npos);
  EXPECT_EQ(Page(u"Ostrakan.Class56", five, {{u"sort_id", u"x"}}).text, u"非法ID参数");
}

TEST_F(DriverPages, TheGenerationPagesAreForAdministratorsOnly) {
  session = std::make_shared<Session>();
  for (const char16_t* progId : {u"Ostrakan.Class21", u"Ostrakan.Class58", u"Ostrakan.Class26"}) {
    const Run run = Page(progId, kThree, {{u"id", u"1"}});
    EXPECT_NE(run.text.find(u"您目前还没有登录或登录超时！"), std::u16string::npos);
  }
}

class GotoPage : public testing::CategoryPages {
 protected:
  Run Goto(const std::u16string& id) {
    testing::TestRequest r(site, u"/goto.asp", std::make_shared<Session>());  // nobody signed in
    auto page = CreateComponent(u"Ostrakan.Goto");
    page->SetProperty(u"id", Variant(id));
    testing::RunBlocks(*page, {u"InitFunction1", u"InitFunction2"});
    page.reset();
    location = "";
    for (const auto& [name, value] : r.response().Headers())
      if (name == "Location") location = value;
    return {r.text(), true, r.response().StatusCode()};
  }
  std::string Clicks() {
    return Value(
        "select group_concat(coalesce(click, '-')) from (select click from db order by id)");
  }
  std::string location;
};

TEST_F(GotoPage, CountsOneClickAndRedirectsToTheRecordsAddress) {
  testing::Sql(site.database(),
               "insert into db (title, url, click) values ('a', 'v.test/a?x=1', 4);"
               "insert into db (title, url, click) values ('b', 'https://v.test/b', null);"
               "insert into db (title, url) values ('c', 'v.test/c\r\nSet-Cookie: x=1')");
  EXPECT_EQ(Goto(u"1").status, 302);
  EXPECT_EQ(location, "http://v.test/a?x=1");
  EXPECT_EQ(Clicks(), "5,-,0");
  Goto(u"2");
  EXPECT_EQ(location, "https://v.test/b");
  Goto(u"3");
  EXPECT_EQ(location, "http://v.test/cSet-Cookie: x=1");  // a line break cannot split the header
  EXPECT_EQ(Clicks(), "5,1,1");
}

TEST_F(GotoPage, RefusesABadOrUnknownIdWithA404AndChangesNothing) {
  testing::Sql(site.database(), "insert into db (title, url, click) values ('a', 'v.test/a', 4)");
  for (const char16_t* bad : {u"", u"x", u"1 or 1=1", u"1;update db set click=0"}) {
    const Run run = Goto(bad);
    EXPECT_EQ(run.status, 404);
    EXPECT_EQ(run.text, u"非法ID参数");
  }
  const Run run = Goto(u"2");
  EXPECT_EQ(run.status, 404);
  EXPECT_EQ(run.text, u"该记录不存在或错误！");
  EXPECT_EQ(location, "");
  EXPECT_EQ(Value("select click from db"), "4");
}

}  // namespace
}  // namespace ostrakan
