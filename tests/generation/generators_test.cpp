// The category page generators (the pages they write from the site's real templates, the
// record list's choice and order, bad ids), the pages that drive them (one generator frame per
// page to build, in the rebuild plan's order), and the public click-through goto.asp.
#include <regex>

#include "generation/category_pages.h"
#include "platform/text/codepage.h"
#include "support/admin_pages.h"

namespace ostrakan {
namespace {

using generation::PageKind;
using namespace testing;

class Generation : public AdminPages {
 protected:
  Generation() {
    std::filesystem::copy(SourceDir() / "site/template", site.root() / "template");
    std::filesystem::create_directories(site.root() / "list");
  }
  // create_sort_one_ok.asp (Class26) or create_sort_two_ok.asp (Class23) for `id`.
  PageRun Generate(const char16_t* progId, const std::u16string& id) {
    return Run(progId, 3, {}, {}, {{u"id", id}});
  }
  std::u16string File(const std::string& relative) {
    return text::Decode(ReadFile(site.root() / relative), 936);
  }
  void AddRecord(const std::string& title, int click, const std::string& image = "NULL") {
    Sql(site.database(),
        "insert into db (title, content, url, image, source, source_url, click, time) values ('" +
            title + "', '说明', 'v.test/" + title + "', " + image + ", '来源站', 'src.test', " +
            std::to_string(click) + ", '2021-01-02 03:04:05')");
  }
  // The sub-category page as the headless command writes it, with Source_Show as given.
  std::u16string SubCategoryPage(int id, bool showSource) {
    const generation::Generated g = generation::GeneratePage(
        PageKind::SubCategory, *Connect(site.database()), fs::FileSystem::Real(),
        {site.root(), u"站", showSource}, Variant(id));
    EXPECT_EQ(g.outcome, generation::Generated::Outcome::Written) << g.failure;
    return File("list/list_" + std::to_string(id) + ".html");
  }
  // The generator addresses of a driver page's frames, in page order ("one:2", "two:5" ...).
  std::vector<std::string> Frames(const char16_t* progId, int blocks, const Keys& query,
                                  const Keys& form = {}) {
    const std::string text = ToUtf8(Run(progId, blocks, query, form).text);
    static const std::regex frame(
        "<iframe[^>]* src=\"create_sort_(one|two)_ok\\.asp\\?id=([^\"]*)\"");
    std::vector<std::string> out;
    for (std::sregex_iterator m(text.begin(), text.end(), frame), end; m != end; ++m)
      out.push_back((*m)[1].str() + ":" + (*m)[2].str());
    return out;
  }
};
using Plan = std::vector<std::string>;

TEST_F(Generation, TopLevelPagesLinkTheirSubCategoriesWhosePagesListTheirRecords) {
  const int top = AddCategory("电影");
  const int kungfu = AddCategory("功夫", top, 1);
  for (int i = 1; i <= 5; ++i) AddCategory("动作" + std::to_string(i), top, 1);
  AddCategory("别家", AddCategory("电视"), 1);
  EXPECT_EQ(Generate(u"Ostrakan.Class26", u"1").text, u"电影 >> 生成HTML成功！");
  std::u16string page = File("sort_list_1.html");
  EXPECT_EQ(page.find(u"[pellumar]"), std::u16string::npos);  // every marker replaced
  EXPECT_EQ(Count(page, u"<a name='"), 26u);                  // the empty groups too
  EXPECT_TRUE(Holds(page, u"<a href='list/list_2.html' target='_blank'>功夫</a>"));
  EXPECT_EQ(page.find(u"别家"), std::u16string::npos);
  // Without its template the page is not written again: logged, and the old page stays whole.
  std::filesystem::remove(site.root() / "template/sort_one_list.asp");
  AddCategory("新的", top, 2);
  EXPECT_EQ(Generate(u"Ostrakan.Class26", u"1").text, u"");
  EXPECT_EQ(File("sort_list_1.html"), page);
  EXPECT_TRUE(
      Holds(site.log(), "\\admin\\create_sort_one_ok, InitFunction3: cannot find the file"));

  // At most a hundred records whose title has the name, most clicked first, then newest.
  Sql(site.database(),
      "with recursive n(i) as (select 0 union all select i + 1 from n where i < 119) "
      "insert into db (title, url, click, time) select '功夫片' || i, 'u', i % 7, '2020-01-01' "
      "from n");
  AddRecord("新功夫", 50);
  Sql(site.database(), "insert into db (title, click, time) values ('老功夫', 50, '2019-05-05')");
  AddRecord("喜剧", 99);
  EXPECT_EQ(Generate(u"Ostrakan.Class23", CStr(Variant(kungfu))).text, u"功夫 >> 生成HTML成功！");
  page = File("list/list_" + std::to_string(kungfu) + ".html");
  EXPECT_EQ(Count(page, u"<table  width='68%'>"), 100u);
  EXPECT_EQ(page.find(u"喜剧"), std::u16string::npos);
  EXPECT_LT(page.find(u"新功夫"), page.find(u"老功夫"));
  EXPECT_LT(page.find(u"老功夫"), page.find(u"功夫片6"));
  EXPECT_EQ(page.find(u"功夫片0<"), std::u16string::npos);  // the least clicked are cut
}

TEST_F(Generation, RecordsShowTheirPictureOrThePlaceholderAndTheirSourceWhenAsked) {
  const int id = AddCategory("猫", 1, 1);
  AddRecord("猫和老鼠", 2, "'img.test/cat.jpg'");
  AddRecord("猫<b>", 1);
  std::u16string page = SubCategoryPage(id, true);
  for (const char16_t* part :
       {u"<img src='http://img.test/cat.jpg' ", u"onerror=\"src='../image/image.gif'\">",
        u"goto.asp?id=2'  target='_blank'><img src='../image/image.gif' ",
        u"来源：</font><a href='http://src.test' target='_blank'>"})
    EXPECT_TRUE(Holds(page, part));
  EXPECT_EQ(SubCategoryPage(id, false).find(u"来源"), std::u16string::npos);
  // Source_Show asks for the source when it is the number 1.
  EXPECT_TRUE(generation::ShowsSource(Variant(u"1")) && generation::ShowsSource(Variant(1)));
  for (const Variant& v : {Variant(u"0"), Variant(u"yes"), Variant(), Variant(2)})
    EXPECT_FALSE(generation::ShowsSource(v));
}

TEST_F(Generation, BadIdsAndQuotesOrLikeSignsInANameChangeNothing) {
  AddRecord("100%好", 1);
  AddRecord("100X好", 1);
  // "%" and "_" keep their meaning inside the pattern, as the name was always taken.
  EXPECT_EQ(Count(SubCategoryPage(AddCategory("100%好", 1, 1), true), u"68%'>"), 2u);
  EXPECT_EQ(Count(SubCategoryPage(AddCategory("100_好", 1, 1), true), u"68%'>"), 2u);
  // A quote broke the statement: logged, no page, and the records are untouched.
  const int quoted = AddCategory("a''); delete from db; --", 1, 1);
  EXPECT_EQ(Generate(u"Ostrakan.Class23", CStr(Variant(quoted))).text, u"");
  EXPECT_FALSE(
      std::filesystem::exists(site.root() / ("list/list_" + std::to_string(quoted) + ".html")));
  EXPECT_TRUE(Holds(site.log(),
                    "create_sort_two_ok, InitFunction3: [Microsoft][ODBC Microsoft Access "
                    "Driver] Syntax error"));
  for (const char16_t* bad : {u"", u"x", u"1 or 1=1", u"1;delete from sort"}) {
    const PageRun run = Generate(u"Ostrakan.Class26", bad);
    EXPECT_EQ(run.text, kBadId) << ToUtf8(bad);
    EXPECT_FALSE(run.completed);
  }
  EXPECT_EQ(Generate(u"Ostrakan.Class26", u"42").text, u"该记录不存在或错误！");
  EXPECT_FALSE(std::filesystem::exists(site.root() / "sort_list_42.html"));
  EXPECT_EQ(Value("select count(*) from db"), "2");
  EXPECT_EQ(Value("select count(*) from sort"), "3");
}

TEST_F(Generation, DriverFramesFollowEachTopLevelPageWithItsSubCategories) {
  EXPECT_EQ(Run(u"Ostrakan.Class58", 3).text, u"");  // create_all_instruction: nothing yet
  AddCategory("电影");                               // 1
  AddCategory("电视");                               // 2
  AddCategory("动作", 1, 1);                         // 3
  AddCategory("无字母", 2, 0);  // 4: hidden from the letter lists, still generated
  AddCategory("喜剧", 1, 2);    // 5
  EXPECT_EQ(Frames(u"Ostrakan.Class58", 3, {}),
            (Plan{"one:1", "two:3", "two:5", "one:2", "two:4"}));
  // The ticked ones (create_sort_one_instruction), bad values passed on for the generator.
  EXPECT_EQ(Frames(u"Ostrakan.Class27", 3, {}, {{u"id", u"2"}, {u"id", u"1"}}),
            (Plan{"one:2", "two:4", "one:1", "two:3", "two:5"}));
  EXPECT_EQ(Frames(u"Ostrakan.Class27", 3, {}, {{u"id", u"1 or 1=1\"><b>"}}),
            (Plan{"one:1%20or%201%3D1%22%3E%3Cb%3E"}));
  EXPECT_TRUE(Frames(u"Ostrakan.Class27", 3, {}).empty());
  EXPECT_EQ(Frames(u"Ostrakan.Class57", 2, {{u"id", u"5"}, {u"id", u"3"}}),
            (Plan{"two:5", "two:3"}));
  // The lists to choose from link each category to its own generator.
  std::u16string text = Run(u"Ostrakan.Class22", 4).text;  // create_sort.asp
  EXPECT_EQ(Ids(text), (std::vector<int>{1, 2}));
  EXPECT_TRUE(Holds(text, u"<a href='create_sort_one_ok.asp?id=2' target='_blank'>"));
  text = Run(u"Ostrakan.Class56", 5, {{u"sort", u"电影"}, {u"sort_id", u"1"}}).text;
  EXPECT_TRUE(Holds(text, u"<a href='create_sort_two_ok.asp?id=5' target='_blank'>"));
  EXPECT_EQ(Run(u"Ostrakan.Class56", 5, {{u"sort_id", u"x"}}).text, kBadId);
}

// The redirect itself is followed over HTTP and in the browser; here, what goto.asp refuses
// and what it counts.
TEST_F(Generation, GotoCountsOneClickAndRedirectsOrRefusesWithA404) {
  Sql(site.database(),
      "insert into db (title, url, click) values ('a', 'v.test/a?x=1', 4), "
      "('b', 'https://v.test/b', null)");
  session = std::make_shared<Session>();  // nobody signed in
  auto go = [&](const std::u16string& id) {
    return Run(u"Ostrakan.Goto", 2, {}, {}, {{u"id", id}});
  };
  EXPECT_EQ(go(u"1").location, "http://v.test/a?x=1");
  EXPECT_EQ(go(u"2").location, "https://v.test/b");
  for (const char16_t* bad : {u"", u"x", u"1 or 1=1", u"1;update db set click=0", u"4"}) {
    const PageRun refused = go(bad);
    EXPECT_EQ(refused.status, 404);
    EXPECT_EQ(refused.text, bad == std::u16string(u"4") ? u"该记录不存在或错误！" : kBadId);
    EXPECT_EQ(refused.location, "");
  }
  EXPECT_EQ(Value("select group_concat(click) from (select click from db order by id) as t"),
            "5,1");
}

TEST(FillTemplate, ReplacesEveryMarkerEverywhereAndOnlyTheKindsList) {
  const std::u16string t =
      u"[pellumar]title[/pellumar]|[pellumar]sort[/pellumar]|[pellumar]sort[/pellumar]|"
      u"[pellumar]sort_list[/pellumar]|[pellumar]db_list[/pellumar]|[PELLUMAR]sort[/PELLUMAR]";
  EXPECT_EQ(generation::FillTemplate(PageKind::TopLevel, t, u"T&", u"S", u"<L>"),
            u"T&amp;|S|S|<L>|[pellumar]db_list[/pellumar]|[PELLUMAR]sort[/PELLUMAR]");
  EXPECT_EQ(generation::FillTemplate(PageKind::SubCategory, t, u"T", u"S", u"<L>"),
            u"T|S|S|[pellumar]sort_list[/pellumar]|<L>|[PELLUMAR]sort[/PELLUMAR]");
}

}  // namespace
}  // namespace ostrakan
