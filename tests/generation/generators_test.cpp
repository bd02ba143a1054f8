// The category page generators: the pages they write from the site's real templates, the
// record list's choice and order, and what happens to files when something is wrong.
#include <gtest/gtest.h>

#include "generation/category_pages.h"
#include "platform/text/codepage.h"
#include "support/category_fixture.h"

namespace ostrakan {
namespace {

using generation::Generated;
using generation::PageKind;
using testing::Count;
using testing::ReadFile;
using testing::Sql;
using testing::TestRequest;

const std::initializer_list<std::u16string_view> kGenerator = {u"InitFunction1", u"InitFunction2",
                                                               u"InitFunction3"};

class Generators : public testing::CategoryPages {
 protected:
  void SetUp() override {
    CategoryPages::SetUp();
    std::filesystem::copy(testing::SourceDir() / "site/template", site.root() / "template");
    std::filesystem::create_directories(site.root() / "list");
  }
  Run Generate(const char16_t* progId, const std::u16string& id) {
    TestRequest r(site, u"/admin/create.asp", session);
    auto page = CreateComponent(progId);
    page->SetProperty(u"id", Variant(id));
    const bool ranToEnd = testing::RunBlocks(*page, kGenerator);
    page.reset();
    return {r.text(), ranToEnd, 200};
  }
  std::u16string File(const std::string& relative) {
    return text::Decode(ReadFile(site.root() / relative), 936);
  }
  // Adds a record; `time` in ISO form.
  void AddRecord(const std::string& title, int click, const std::string& time,
                 const std::string& image = "NULL") {
    Sql(site.database(),
        "insert into db (title, content, url, image, source, source_url, click, time) values ('" +
            title + "', '说明', 'v.test/" + title + "', " + image + ", '来源站', 'src.test', " +
            std::to_string(click) + ", '" + time + "')");
  }
  // The page as the headless command writes it, with Source_Show as given.
  std::u16string SubCategoryPage(int id, bool showSource) {
    auto conn = std::make_shared<ado::Connection>();
    conn->Open(u"DBQ=" + FromUtf8(site.database().string()) + u";");
    const Generated g =
        generation::GeneratePage(PageKind::SubCategory, *conn, fs::FileSystem::Real(),
                                 {site.root(), u"站", showSource}, Variant(id));
    EXPECT_EQ(g.outcome, Generated::Outcome::Written) << g.failure;
    return File("list/list_" + std::to_string(id) + ".html");
  }
};

TEST_F(Generators, TopLevelPageHasEveryLetterGroupAndLinksItsSubCategories) {
  const int top = AddCategory("电影");
  for (int i = 1; i <= 6; ++i) AddCategory("动作" + std::to_string(i), top, 1);
  AddCategory("喜剧", top, 3);
  AddCategory("别家", AddCategory("电视"), 1);
  const Run run = Generate(u"Ostrakan.Class26", u"1");
  EXPECT_EQ(run.text, u"电影 >> 生成HTML成功！");
  const std::u16string page = File("sort_list_1.html");
  EXPECT_EQ(page.find(u"[pellumar]"), std::u16string::npos);  // every marker replaced
  EXPECT_NE(page.find(u"<title>电影 - 测试站点</title>"), std::u16string::npos);
  EXPECT_EQ(Count(page, u"<a name='"), 26u);
  EXPECT_NE(page.find(u"<a name='B'></a><table width='100%' border='0' cellpadding='5' "
                      u"cellspacing='5'><tr><td width='50' align='center' bgcolor='#F5F5F5'>"
                      u"<span style='bold;font-size: 18px;color: #666666;font-family: Arial;'>B"
                      u"</span></td><td bgcolor='#F5F5F5'></td></tr></table>"),
            std::u16string::npos);  // an empty group keeps its letter and its cell
  // Six in group A: two lines of five, the second with four empty cells.
  const size_t groupA = page.find(u"<a name='A'>");
  const std::u16string a = page.substr(groupA, page.find(u"<a name='B'>") - groupA);
  EXPECT_EQ(Count(a, u"<td width='20%' height='25'>"), 2u);
  EXPECT_NE(a.find(u"<a href='list/list_2.html' target='_blank'>动作1</a>"), std::u16string::npos);
  EXPECT_EQ(page.find(u"别家"), std::u16string::npos);
  EXPECT_NE(page.find(u"href=\"./\""), std::u16string::npos);  // back to the site's home
}

TEST_F(Generators, SubCategoryPageListsAtMostAHundredMatchingRecordsMostClickedThenNewest) {
  const int id = AddCategory("功夫", AddCategory("电影"), 1);
  std::string sql = "begin;";
  for (int i = 0; i < 120; ++i)
    sql += "insert into db (title, url, click, time) values ('功夫片" + std::to_string(i) +
           "', 'u', " + std::to_string(i % 7) + ", '2020-01-01 00:00:00');";
  Sql(site.database(), sql + "commit;");
  AddRecord("老功夫", 50, "2019-05-05 10:00:00");
  AddRecord("新功夫", 50, "2021-05-05 10:00:00");
  AddRecord("喜剧", 99, "2021-05-05 10:00:00");  // does not contain the name
  EXPECT_EQ(Generate(u"Ostrakan.Class23", CStr(Variant(id))).text, u"功夫 >> 生成HTML成功！");
  const std::u16string page = File("list/list_" + std::to_string(id) + ".html");
  EXPECT_EQ(Count(page, u"<table  width='68%'>"), 100u);
  EXPECT_EQ(page.find(u"喜剧"), std::u16string::npos);
  EXPECT_LT(page.find(u"新功夫"), page.find(u"老功夫"));
  EXPECT_LT(page.find(u"老功夫"), page.find(u"功夫片6"));
  EXPECT_EQ(page.find(u"功夫片0<"), std::u16string::npos);  // the least clicked are cut
  EXPECT_NE(page.find(u"href=\"../\""), std::u16string::npos);
}

TEST_F(Generators, RecordsShowTheirPictureOrThePlaceholderAndTheirSourceWhenAsked) {
  const int id = AddCategory("猫", 1, 1);
  AddRecord("猫和老鼠", 2, "2021-01-02 03:04:05", "'img.test/cat.jpg'");
  AddRecord("猫<b>", 1, "2021-01-02 03:04:05");
  std::u16string page = SubCategoryPage(id, true);
  EXPECT_NE(page.find(u"<table  width='68%'><tr><td width='125'><a href='../goto.asp?id=1'  "
                      u"target='_blank'><img src='http://img.test/cat.jpg' width='120' height='90' "
                      u"border='0' onerror=\"src='../image/image.gif'\"></a></td> <td "
                      u"valign='top'><span style='font-size: 14px'><a href='../goto.asp?id=1'  "
                      u"target='_blank'>猫和老鼠</a></span><br><span style='line-height: "
                      u"150%'>说明</span><br><span style='line-height: 150%'><font "
                      u"color='#009900'>2021-1-2 3:04:05 来源：</font><a href='http://src.test' "
                      u"target='_blank'><font color='#999999'>来源站</font></a><br><font "
                      u"color='#009900'>v.test/猫和老鼠</font></span><br><br></td></tr></table>"),
            std::u16string::npos)
      << ToUtf8(page);
  EXPECT_NE(page.find(u"<a href='../goto.asp?id=2'  target='_blank'><img src='../image/image.gif' "
                      u"width='120' height='90' border='0'></a>"),
            std::u16string::npos);
  EXPECT_NE(page.find(u">猫&lt;b&gt;</a>"), std::u16string::npos);  // titles are text
  page = SubCategoryPage(id, false);
  EXPECT_EQ(page.find(u"来源"), std::u16string::npos);
  EXPECT_NE(page.find(u"3:04:05</font><br><font color='#009900'>"), std::u16string::npos);
}

TEST_F(Generators, SourceShowMeansTheNumberOne) {
  EXPECT_TRUE(generation::ShowsSource(Variant(u"1")));
  EXPECT_TRUE(generation::ShowsSource(Variant(1)));
  for (const Variant& v : {Variant(u"0"), Variant(u""), Variant(u"yes"), Variant(), Variant(2)})
    EXPECT_FALSE(generation::ShowsSource(v));
}

TEST_F(Generators, GeneratingTwiceOverwritesAndBadIdsWriteNothing) {
  const int id = AddCategory("猫", 1, 1);
  AddRecord("猫一", 1, "2021-01-01 00:00:00");
  Generate(u"Ostrakan.Class23", u"1");
  AddRecord("猫二", 1, "2021-01-01 00:00:00");
  Generate(u"Ostrakan.Class23", CStr(Variant(id)));
  EXPECT_NE(File("list/list_1.html").find(u"猫二"), std::u16string::npos);

  for (const char16_t* bad : {u"", u"x", u"1 or 1=1", u"1;delete from sort"}) {
    const Run run = Generate(u"Ostrakan.Class26", bad);
    EXPECT_EQ(run.text, u"非法ID参数") << ToUtf8(bad);
    EXPECT_FALSE(run.ranToEnd);
  }
  EXPECT_EQ(Generate(u"Ostrakan.Class26", u"42").text, u"该记录不存在或错误！");
  EXPECT_FALSE(std::filesystem::exists(site.root() / "sort_list_42.html"));
  EXPECT_EQ(Names(), "猫");
}

TEST_F(Generators, AMissingTemplateIsLoggedAndLeavesTheOldPage) {
  const int top = AddCategory("电影");
  Generate(u"Ostrakan.Class26", CStr(Variant(top)));
  const std::string before = ReadFile(site.root() / "sort_list_1.html");
  AddCategory("新的", top, 1);
  std::filesystem::remove(site.root() / "template/sort_one_list.asp");
  EXPECT_EQ(Generate(u"Ostrakan.Class26", u"1").text, u"");
  EXPECT_EQ(ReadFile(site.root() / "sort_list_1.html"), before);
  EXPECT_NE(site.log().find("\\admin\\create_sort_one_ok, InitFunction3: cannot find the file"),
            std::string::npos)
      << site.log();
  for (const auto& entry : std::filesystem::directory_iterator(site.root()))
    EXPECT_FALSE(entry.path().filename().string().starts_with(".sort_list_"));  // no temporary
}

TEST_F(Generators, QuotesAndLikeSignsInANameCannotChangeTheRecordQuery) {
  AddRecord("100%好", 1, "2021-01-01 00:00:00");
  AddRecord("100X好", 1, "2021-01-01 00:00:00");
  // "%" and "_" keep their meaning inside the pattern, as the name was always taken.
  EXPECT_EQ(Count(SubCategoryPage(AddCategory("100%好", 1, 1), true), u"68%'>"), 2u);
  EXPECT_EQ(Count(SubCategoryPage(AddCategory("100_好", 1, 1), true), u"68%'>"), 2u);
  // A quote broke the statement: logged, no page, and the records are untouched.
  const int quoted = AddCategory("a''); delete from db; --", 1, 1);
  EXPECT_EQ(Generate(u"Ostrakan.Class23", CStr(Variant(quoted))).text, u"");
  EXPECT_FALSE(
      std::filesystem::exists(site.root() / ("list/list_" + std::to_string(quoted) + ".html")));
  EXPECT_NE(site.log().find("create_sort_two_ok, InitFunction3: [Microsoft][ODBC Microsoft Access "
                            "Driver] Syntax error"),
            std::string::npos);
  EXPECT_EQ(Value("select count(*) from db"), "2");
}

TEST(FillTemplate, ReplacesEveryMarkerEverywhereAndOnlyTheKindsList) {
  const std::u16string t =
      u"[pellumar]title[/pellumar]|[pellumar]sort[/pellumar]|"
      u"[pellumar]sort[/pellumar]|[pellumar]sort_list[/pellumar]|"
      u"[pellumar]db_list[/pellumar]|[PELLUMAR]sort[/PELLUMAR]";
  EXPECT_EQ(generation::FillTemplate(PageKind::TopLevel, t, u"T&", u"S", u"<L>"),
            u"T&amp;|S|S|<L>|[pellumar]db_list[/pellumar]|[PELLUMAR]sort[/PELLUMAR]");
  EXPECT_EQ(generation::FillTemplate(PageKind::SubCategory, t, u"T", u"S", u"<L>"),
            u"T|S|S|[pellumar]sort_list[/pellumar]|<L>|[PELLUMAR]sort[/PELLUMAR]");
}

}  // namespace
}  // namespace ostrakan
