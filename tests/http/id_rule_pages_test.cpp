// The ID-site rule pages of the real site over HTTP: the menu, the add form, a rule with quoted
// markers posted in GBK, the rule list, the edit form, and the rule file that the hidden frame
// rebuilds.
#include <gtest/gtest.h>

#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

std::string Form(const std::vector<std::pair<std::string, std::u16string>>& fields) {
  std::string body;
  for (const auto& [name, value] : fields)
    body += (body.empty() ? "" : "&") + name + "=" + GbkEscape(value);
  return body;
}

class IdRulePagesOverHttp : public SiteTest {};

TEST_F(IdRulePagesOverHttp, ARuleGoesFromTheFormToTheListTheEditFormAndTheRuleFile) {
  const std::string cookie = SignIn();
  auto get = [&](const std::string& path) { return client().Get(path, {cookie}); };

  const std::u16string menu = Text(get("/admin/left.asp"));
  EXPECT_NE(menu.find(u"<a href=\"gather_id_web_manage.asp\" target=\"main\">"),
            std::u16string::npos);
  EXPECT_NE(menu.find(u"<a href=\"gather_id_web_add.asp\" target=\"main\">"), std::u16string::npos);
  HttpReply add = get("/admin/gather_id_web_add.asp");
  ASSERT_EQ(add.status, 200);
  EXPECT_NE(Text(add).find(u"action=\"gather_id_web_add_ok.asp\""), std::u16string::npos);

  HttpReply stored = client().Post("/admin/gather_id_web_add_ok.asp",
                                   Form({{"web", u"电影站"},
                                         {"url", u"http://v.example/"},
                                         {"gather_url", u"http://v.example/html/[id].html"},
                                         {"charset", u"utf-8"},
                                         {"error_html", u"<div class=\"404\">"},
                                         {"title_start", u"<h1 class=\"t\">"},
                                         {"title_end", u"</h1>"},
                                         {"content_start", u""},
                                         {"content_end", u""}}),
                                   {cookie});
  ASSERT_EQ(stored.status, 200);
  EXPECT_NE(Text(stored).find(u"src=\"gather_id_web_update.asp\""), std::u16string::npos);
  EXPECT_EQ(SqlValue(database(), "select web || '|' || title_start from gather_id_web"),
            "电影站|<h1 class=\"\"t\"\">");
  const std::string id = SqlValue(database(), "select id from gather_id_web");

  ASSERT_EQ(get("/admin/gather_id_web_update.asp").status, 200);
  const std::u16string file = text::Decode(ReadFile(root() / "admin/gather_id_web_list.asp"), 936);
  EXPECT_NE(file.find(u"Case \"" + FromUtf8(id) + u"\" \r\nWeb=\"电影站\" \r\n"),
            std::u16string::npos);
  EXPECT_NE(file.find(u"Title_Start=\"<h1 class=\"\"t\"\">\" \r\n"), std::u16string::npos);

  const std::u16string list = Text(get("/admin/gather_id_web_manage.asp"));
  EXPECT_NE(list.find(u"<td bgcolor=\"#FFFFFF\">电影站</td>"), std::u16string::npos);
  EXPECT_NE(list.find(u"gather_id_web_edit.asp?id=" + FromUtf8(id)), std::u16string::npos);

  const std::u16string form = Text(get("/admin/gather_id_web_edit.asp?id=" + id));
  EXPECT_NE(form.find(u">&lt;h1 class=\"t\"&gt;</textarea>"), std::u16string::npos);
  EXPECT_NE(form.find(u"<option value=\"utf-8\" selected>"), std::u16string::npos);
  EXPECT_EQ(Text(get("/admin/gather_id_web_edit.asp?id=x")), u"非法ID参数");

  // A visitor without a session changes nothing.
  HttpReply anonymous = client().Get("/admin/gather_id_web_ok.asp?action=del&id=" + id);
  EXPECT_EQ(anonymous.status, 200);
  EXPECT_EQ(SqlValue(database(), "select count(*) from gather_id_web"), "1");
  EXPECT_NE(Text(get("/admin/gather_id_web_ok.asp?action=del&id=" + id)).find(u"删除成功！"),
            std::u16string::npos);
  EXPECT_EQ(SqlValue(database(), "select count(*) from gather_id_web"), "0");
}

}  // namespace
}  // namespace ostrakan::testing
