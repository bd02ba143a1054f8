// Stored text that would leave its place if a page wrote it as it is: in every text field of
// every table, then every administration page that shows it, the pages that read the rule files,
// the generated category pages and goto.asp, fetched from the real server on loopback by a
// signed-in administrator. Nothing may come out as markup or code, no page may break, and the
// edit forms must show (and so post back) exactly what is stored.
#include <gtest/gtest.h>

#include <sstream>

#include "admin/html_scan.h"
#include "frame/filtration.h"
#include "gathering/id_rule.h"
#include "gathering/list_rule.h"
#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

// Closes every kind of place a value lands in (a double- or single-quoted attribute, a script
// string of either quote, a textarea, a script, a title), then tries markup, an event
// attribute and a call; a line break and a line that would start a rule arm; GBK characters
// whose second byte is '\' '@' '~' or 0x80 and the first and last of the code page's ranges.
std::u16string Hostile(std::u16string_view field) {
  return u"\"'><hostile field=" + std::u16string(field) +
         u"></textarea></script></title>"
         u"\" onhostile=\"1' onhostile='1');hostile();//\");hostile();//"
         u"\r\nCase 9\r\n"
         u"丂乗昞亊亐﨩￥€ &amp; \\";
}

// The same without an apostrophe: a category whose name has one cannot have its record page
// generated (the name reaches a pattern that refuses it), so the one that is generated has none.
std::u16string HostileWithoutApostrophe(std::u16string_view field) {
  std::u16string text = Hostile(field);
  std::erase(text, u'\'');
  return text;
}

std::string Quoted(const std::u16string& text) {
  return "'" + ToUtf8(ReplaceAll(text, u"'", u"''")) + "'";
}

// Every problem of one answer: markup or an event attribute that came from the stored text,
// a script (element, event attribute or javascript: address) that runs it or no longer parses.
std::vector<std::string> Problems(std::u16string_view html) {
  std::vector<std::string> found;
  const HtmlScan scan = ScanHtml(html);
  for (const HtmlTag& tag : scan.tags) {
    if (tag.name == u"hostile")
      found.push_back("a <hostile> element from " + ToUtf8(tag.Attribute(u"field")));
    for (const auto& [name, value] : tag.attributes) {
      if (name == u"onhostile") found.push_back("an onhostile attribute on <" + ToUtf8(tag.name));
      std::u16string script;
      if (name.starts_with(u"on")) script = value;
      if ((name == u"href" || name == u"src") && Lower(value).starts_with(u"javascript:"))
        script = value.substr(11);
      if (std::string p = ScriptProblem(script, u"hostile"); !p.empty())
        found.push_back("in " + ToUtf8(name) + " of <" + ToUtf8(tag.name) + ">: " + p);
    }
  }
  for (const std::u16string& script : scan.scripts)
    if (std::string p = ScriptProblem(script, u"hostile"); !p.empty())
      found.push_back("in a script: " + p);
  return found;
}

// What the tests store in `column` of a table whose texts are named `prefix`: the rules'
// addresses, which the run pages fetch, stay on loopback.
std::u16string Stored(const std::u16string& prefix, const std::u16string& column) {
  return (column == u"gather_url" ? u"http://127.0.0.1:1/[page]/[id]/" : u"") +
         Hostile(prefix + u"." + column);
}

// An insert of Stored(prefix, column) into each column.
std::string InsertHostile(const std::string& table, const std::u16string& prefix,
                          const std::vector<std::u16string>& columns) {
  std::string names, values;
  for (const std::u16string& column : columns) {
    names += (names.empty() ? "\"" : ",\"") + ToUtf8(column) + "\"";
    values += (values.empty() ? "" : ",") + Quoted(Stored(prefix, column));
  }
  return "insert into " + table + " (" + names + ") values (" + values + ");";
}

class HostileText : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    // Records: every text column; the second one is found by the generated category page.
    std::string sql = InsertHostile(
        "db", u"db", {u"title", u"content", u"url", u"image", u"source", u"source_url"});
    sql += "insert into db (title, content, url, source, source_url) values (" +
           Quoted(HostileWithoutApostrophe(u"sort.child2")) + ", 'c', 'v.example/2', 's', " +
           "'s.example');";
    // Categories: a first level, a child under letter A, and one under letter B.
    sql += "insert into sort (sort, sort_id, alphabetical_id) values (" +
           Quoted(Hostile(u"sort.top")) + ", 0, 0), (" + Quoted(Hostile(u"sort.child")) +
           ", 1, 1), (" + Quoted(HostileWithoutApostrophe(u"sort.child2")) + ", 1, 2);";
    sql += "insert into keyword (keyword, hot) values (" + Quoted(Hostile(u"keyword")) + ", 3);";
    std::vector<std::u16string> list,
        id(gathering::kIdRuleColumns.begin(), gathering::kIdRuleColumns.end());
    for (const gathering::ListRuleField& f : gathering::ListRuleFields()) list.push_back(f.column);
    id.push_back(u"range");
    sql +=
        InsertHostile("gather_list_web", u"list", list) + InsertHostile("gather_id_web", u"id", id);
    // The administrator's last sign-in, shown on the desktop after this one; a second
    // administrator's name. (PostgreSQL keeps only dates in a date column.)
    sql += "update admin set login_ip=" + Quoted(Hostile(u"admin.login_ip")) +
           (OnPostgres() ? "" : ", login_time=" + Quoted(Hostile(u"admin.login_time"))) + ";";
    sql += "insert into admin (username, password) values (" + Quoted(Hostile(u"admin.username")) +
           ", 'x');";
    Sql(database(), sql);
    cookie_ = SignIn();
  }

  HttpReply Get(const std::string& path) const { return client().Get(path, {cookie_}); }

  std::string cookie_;
};

TEST_F(HostileText, NoPageWritesStoredTextAsMarkupOrCode) {
  const std::string word = GbkEscape(Hostile(u"query"));
  // A quote in the keyword filter fails its list, logged, as it always did.
  const std::string filter = GbkEscape(HostileWithoutApostrophe(u"filter"));
  const std::string top = "sort=" + GbkEscape(Hostile(u"sort.top")) + "&sort_id=1";
  // Pages that only read the database: they answer in full and log nothing.
  std::vector<std::string> pages = {"db_search.asp?action=title&keyword=" + word,
                                    "sort_list.asp?" + top, "create_sort_list.asp?" + top,
                                    "keyword_manage.asp?keyword=" + filter};
  std::istringstream fixed(
      "desktop.asp admin.asp db_list.asp db_search.asp?action=title&keyword=Case db_edit.asp?id=1 "
      "db_manage.asp sort_manage.asp create_sort.asp sort_batch_add.asp?sort_id=2 "
      "create_all_instruction.asp create_sort_one_instruction.asp?id=1 create_sort_one_ok.asp?id=1 "
      "create_sort_two_ok.asp?id=3 keyword_manage.asp gather_list_web_manage.asp "
      "gather_list_web_edit.asp?id=1 gather_list_db.asp?id=1 gather_list_web_update.asp "
      "gather_id_web_manage.asp gather_id_web_edit.asp?id=1 gather_id_db.asp?id=1 "
      "gather_id_web_update.asp");
  for (std::string page; fixed >> page;) pages.push_back(page);
  std::u16string shown;
  for (const std::string& page : pages) {
    SCOPED_TRACE(page);
    const HttpReply reply = Get("/admin/" + page);
    EXPECT_EQ(reply.status, 200);
    const std::u16string text = Text(reply);
    EXPECT_EQ(Problems(text), std::vector<std::string>{}) << ToUtf8(text);
    EXPECT_EQ(Log(), "");
    shown += text;
  }
  // Every kind of stored text was shown somewhere (the list is not passing by showing nothing).
  for (const char16_t* field : {u"db.title", u"db.source", u"sort.child", u"keyword", u"list.web",
                                u"id.web", u"id.range", u"admin.login_ip", u"admin.login_time"})
    if (!OnPostgres() || field != std::u16string_view(u"admin.login_time")) {
      EXPECT_TRUE(Holds(shown, u"&lt;hostile field=" + std::u16string(field) + u"&gt;"));
    }

  // The generated category pages.
  for (const char* file : {"sort_list_1.html", "list/list_3.html"}) {
    SCOPED_TRACE(file);
    const std::u16string text = text::Decode(ReadFile(root() / file), 936);
    EXPECT_TRUE(Holds(text, u"&lt;hostile field=sort."));
    EXPECT_EQ(Problems(text), std::vector<std::string>{}) << ToUtf8(text);
  }

  // The pages that read a rule from its file answer; their fetch of the (closed) loopback
  // address fails and is logged, nothing of the rule comes out as markup.
  for (const char* page : {"gather_list_web_verify.asp?id=1", "gather_list_db_ok.asp?ID=1",
                           "gather_id_web_verify.asp?id=1&ID_Start=1&ID_End=1",
                           "gather_id_db_ok.asp?ID=1&ID_Start=1&ID_End=2"}) {
    SCOPED_TRACE(page);
    const HttpReply reply = Get(std::string("/admin/") + page);
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(Problems(Text(reply)), std::vector<std::string>{}) << ToUtf8(Text(reply));
  }

  // The sign-in page's refusal repeats the verify code that was typed, inside its script.
  const HttpReply refused = client().Post(
      "/admin/login.asp", SignInForm("admin", "secret123", GbkEscape(Hostile(u"verifyid"))));
  EXPECT_TRUE(Holds(Text(refused), u"验证码错误！"));
  EXPECT_EQ(Problems(Text(refused)), std::vector<std::string>{}) << ToUtf8(Text(refused));

  // goto.asp sends the visitor on; the stored line break cannot add a header.
  const HttpReply jump = Get("/goto.asp?id=1");
  EXPECT_EQ(jump.status, 302);
  for (const auto& [name, value] : jump.headers)
    EXPECT_TRUE(name.find("case") == std::string::npos && name.find("hostile") == std::string::npos)
        << name;
  EXPECT_TRUE(Holds(jump.Header("location"), "hostile"));
}

// What the administrator sees in a form field is what is stored (its line breaks as the parser
// reads them), so saving the form unchanged stores the same text again.
TEST_F(HostileText, EditFormsShowExactlyWhatIsStored) {
  auto fields = [](const std::u16string& html) {
    std::vector<std::pair<std::u16string, std::u16string>> out;
    const HtmlScan scan = ScanHtml(html);
    for (const HtmlTag& tag : scan.tags)
      if (tag.name == u"input" && tag.Attribute(u"type") == u"text")
        out.emplace_back(tag.Attribute(u"name"), tag.Attribute(u"value"));
    for (const auto& [tag, text] : scan.textareas) out.emplace_back(tag.Attribute(u"name"), text);
    return out;
  };
  // (A rule's charset is a select.)
  for (const auto& [page, prefix, count] :
       {std::tuple<std::string, std::u16string, size_t>{"db_edit.asp?id=1", u"db", 5},
        {"gather_list_web_edit.asp?id=1", u"list", gathering::ListRuleFields().size() - 1},
        {"gather_id_web_edit.asp?id=1", u"id", gathering::kIdRuleColumns.size() - 1}}) {
    SCOPED_TRACE(page);
    const auto shown = fields(Text(Get("/admin/" + page)));
    ASSERT_EQ(shown.size(), count);
    for (const auto& [name, value] : shown)
      EXPECT_EQ(value, ReplaceAll(Stored(prefix, name), u"\r\n", u"\n")) << ToUtf8(name);
  }
}

}  // namespace
}  // namespace ostrakan::testing
