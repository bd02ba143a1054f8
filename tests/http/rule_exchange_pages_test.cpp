// Rules moved between sites through the rule lists: the ticked rules as a download, an uploaded
// file previewed and then imported, on the real engine (multipart upload included).
#include "engine/rules_command.h"
#include "http/site_fixture.h"
#include "support/list_rule_fixture.h"

namespace ostrakan::testing {
namespace {

class RuleExchangePages : public SiteTest {
 protected:
  HttpReply Upload(const std::string& fileBytes, const std::string& cookie) {
    const std::string body = "--XyZ\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" +
                             text::Encode(u"规则.json", 936) +
                             "\"\r\nContent-Type: application/json\r\n\r\n" + fileBytes +
                             "\r\n--XyZ--\r\n";
    return client().Send("POST", "/admin/gather_rules_import.asp?kind=list", body,
                         {cookie, "Content-Type: multipart/form-data; boundary=XyZ"});
  }
};

// The download is the document of `ostrakan rules export`; the upload is previewed, then
// imported (field by field, with the rule file: the rule exchange's test; the pages' flow in a
// browser: the browser's).
TEST_F(RuleExchangePages, TickedRulesAreDownloadedAndAnUploadedFileIsImportedAfterAPreview) {
  const std::string cookie = SignIn();
  InsertFixtureRule(database(), "http://remote.test/[page].html");
  const std::string second = InsertFixtureRule(database(), "http://remote.test/b/[page].html");
  Sql(database(), "update gather_list_web set web = '功夫 \"站\"' where id = " + second);
  HttpReply download =
      client().Post("/admin/gather_rules_export.asp", "kind=list&id=" + second, {cookie});
  EXPECT_EQ(download.Header("content-type"), "application/json; charset=utf-8");
  const std::string file = download.body;
  std::string exported;
  ASSERT_EQ(RunCommand(engine::ParseRulesArgs, engine::RunRules,
                       {"--site", root().string(), "export", "--kind", "list", second}, exported),
            0);
  EXPECT_EQ(file, exported);
  for (auto [form, said] : {std::pair{"kind=list", u"请先勾选要导出的规则！"},
                            std::pair{"kind=list&id=1&id=x", u"非法ID参数"},
                            std::pair{"kind=id&id=1", u"该记录不存在或错误！"}})
    EXPECT_TRUE(Holds(Text(client().Post("/admin/gather_rules_export.asp", form, {cookie})), said))
        << form;

  // A file that cannot be imported is refused by name, a broken upload by the engine.
  std::u16string page = Text(Upload("{\"format\":\"ostrakan-rules\",\"version\":9}", cookie));
  EXPECT_TRUE(
      Holds(page, u"这个文件不能导入，没有添加任何规则：文件的版本是 9，本程序只能读取版本 1"));
  EXPECT_FALSE(Holds(page, u"确认导入"));
  HttpReply broken = client().Send("POST", "/admin/gather_rules_import.asp", "--XyZ\nno\n",
                                   {cookie, "Content-Type: multipart/form-data; boundary=XyZ"});
  EXPECT_EQ(broken.status, 400);
  EXPECT_TRUE(Holds(broken.body, "boundary"));

  // The preview names the file and adds nothing; the confirm adds the rule, not signed out.
  page = Text(Upload(file, cookie));
  EXPECT_TRUE(Holds(page, u"文件：规则.json"));
  EXPECT_EQ(Value("select count(*) from gather_list_web"), "2");
  const std::u16string_view field = u"name=\"document\" value=\"";
  const size_t at = page.find(field) + field.size();
  const std::string confirm =
      "kind=list&document=" + GbkEscape(page.substr(at, page.find(u'"', at) - at));
  client().Post("/admin/gather_rules_import_ok.asp", confirm);  // the guard
  client().Post("/admin/gather_rules_import_ok.asp", confirm, {cookie});
  EXPECT_EQ(Value("select group_concat(web, '|') from gather_list_web where id > " + second),
            "功夫 \"站\"");
  EXPECT_TRUE(Holds(
      Text(client().Post("/admin/gather_rules_import_ok.asp", "kind=list&document=e30", {cookie})),
      u"请选择要导入的规则文件！"));  // not the preview's base64
  EXPECT_EQ(Value("select count(*) from gather_list_web"), "3");
}

}  // namespace
}  // namespace ostrakan::testing
