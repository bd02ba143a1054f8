// The video record pages of the real site, served by the engine over loopback to a signed-in
// browser: GBK form posts, the list page's charset, and batch delete by GET. Guarding and
// the pages' logic are tested on the components and across the whole site.
#include "admin/registry.h"
#include "http/engine_fixture.h"

namespace ostrakan::testing {
namespace {

namespace fs = std::filesystem;

// A form or query value as a browser on a GB2312 page sends it: GBK bytes, percent-encoded.
std::string GbkEncoded(std::u16string_view value) {
  static const char* hex = "0123456789ABCDEF";
  std::string out;
  for (unsigned char c : text::Encode(value, 936)) {
    if (std::isalnum(c) || c == '-' || c == '_' || c == '.') {
      out += static_cast<char>(c);
    } else {
      out += '%';
      out += hex[c >> 4];
      out += hex[c & 15];
    }
  }
  return out;
}

std::string FormBody(const std::vector<std::pair<std::string, std::u16string>>& fields) {
  std::string body;
  for (const auto& [name, value] : fields)
    body += (body.empty() ? "" : "&") + name + "=" + GbkEncoded(value);
  return body;
}

// The real site's record pages and settings, a fresh database, and one extra page that signs
// the visitor in (the sign-in page itself needs the verify picture).
class RecordPagesOverHttp : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir_ = new TempDir();
    root_ = dir_->path() / "site";
    const fs::path source = SourceDir() / "site";
    fs::create_directories(root_ / "admin");
    fs::create_directories(root_ / "data");
    fs::copy_file(source / "Setup.asp", root_ / "Setup.asp");
    fs::copy(source / "admin/css", root_ / "admin/css", fs::copy_options::recursive);
    for (const char* page : {"db_list", "db_add", "db_add_ok", "db_edit", "db_edit_ok", "db_ok",
                             "db_manage", "db_manage_ok"})
      fs::copy_file(source / "admin" / (std::string(page) + ".asp"),
                    root_ / "admin" / (std::string(page) + ".asp"));
    WriteAnsi(root_ / "admin/test_signin.asp",
              u"<%@ Component=\"Test.Page\" %><% InitFunction1 %><% SignIn %>in");
    Sql(database(), ReadFile(source / "data/schema.sql"));
    SetErrorLogPath(root_ / "data/PagebindLog.Log");

    engine::ServerOptions options;
    options.siteRoot = root_;
    options.listen = "127.0.0.1:0";
    options.threads = 4;
    options.createComponent = [](std::u16string_view progId) -> std::shared_ptr<Component> {
      if (IEquals(progId, u"Test.Page")) return std::make_shared<TestPage>();
      return CreateComponent(progId);
    };
    server_ = new engine::HttpServer(options);
  }
  static void TearDownTestSuite() {
    delete server_;
    delete dir_;
  }

  void SetUp() override {
    Sql(database(), "delete from db");
    HttpReply r = client().Get("/admin/test_signin.asp");
    ASSERT_EQ(r.body, "in");
    cookie_ = "Cookie: OSTRAKANSESSION=" + r.SessionCookie();
  }

  static fs::path database() { return root_ / "data/ostrakan.db"; }
  HttpClient client() const { return HttpClient(server_->port()); }
  HttpReply Get(const std::string& path) const { return client().Get(path, {cookie_}); }
  HttpReply Post(const std::string& path, const std::string& body) const {
    return client().Post(path, body, {cookie_});
  }
  static std::u16string Text(const HttpReply& r) { return text::Decode(r.body, 936); }
  static std::string Value(const std::string& sql) { return SqlValue(database(), sql); }

  static inline TempDir* dir_ = nullptr;
  static inline fs::path root_;
  static inline engine::HttpServer* server_ = nullptr;
  std::string cookie_;
};

TEST_F(RecordPagesOverHttp, ChineseTextPostedInGbkIsStoredListedAndEdited) {
  HttpReply r = Post("/admin/db_add_ok.asp", FormBody({{"title", u"大闹天宫"},
                                                       {"content", u"孙悟空的故事，“齐天大圣”。"},
                                                       {"url", u"http://v.example.cn/天宫"},
                                                       {"source", u"优酷"},
                                                       {"source_url", u"http://youku.com"}}));
  ASSERT_EQ(r.status, 200);
  EXPECT_NE(Text(r).find(u"<Script>window.alert('添加成功！');location.replace('db_add.asp');"
                         u"</Script>"),
            std::u16string::npos)
      << r.body;
  EXPECT_EQ(Value("select title || '|' || content || '|' || url || '|' || source from db"),
            "大闹天宫|孙悟空的故事，“齐天大圣”。|v.example.cn/天宫|优酷");
  const std::string id = Value("select id from db");

  HttpReply list = Get("/admin/db_list.asp");
  ASSERT_EQ(list.status, 200);
  EXPECT_EQ(list.Header("content-type"), "text/html; charset=gb2312");
  // The page file's delete script and batch form around the component's rows.
  const std::u16string page = Text(list);
  for (const std::u16string& part : std::vector<std::u16string>{
           u"确定要删除这条记录吗？", u"action=\"db_ok.asp\"", u"name=\"action\" value=\"alldel\"",
           u"<a href='db_edit.asp?id=" + FromUtf8(id) + u"'>大闹天宫</a>"})
    EXPECT_NE(page.find(part), std::u16string::npos) << ToUtf8(part);

  HttpReply form = Get("/admin/db_edit.asp?id=" + id);
  EXPECT_NE(Text(form).find(u"value=\"大闹天宫\""), std::u16string::npos);
  EXPECT_NE(Text(form).find(u">孙悟空的故事，“齐天大圣”。</textarea>"), std::u16string::npos);

  r = Post("/admin/db_edit_ok.asp", FormBody({{"id", FromUtf8(id)},
                                              {"title", u"大闹天宫（修复版）"},
                                              {"content", u""},
                                              {"url", u"v.example.cn/天宫"},
                                              {"source", u"优酷"},
                                              {"source_url", u"youku.com"}}));
  EXPECT_NE(Text(r).find(u"修改成功！"), std::u16string::npos) << r.body;
  EXPECT_EQ(Value("select title || '|' || (content is null) from db"), "大闹天宫（修复版）|1");
}

TEST_F(RecordPagesOverHttp, TickedBoxesAreDeletedByOneGetAndThePageReturnsToTheList) {
  Sql(database(),
      "insert into db (id, title, url) values (1, 'a', 'a'), (2, 'b', 'b'), (3, 'c', 'c'), "
      "(4, 'd', 'd'), (5, 'e', 'e')");
  ASSERT_EQ(Get("/admin/db_list.asp").status, 200);  // keeps the list's address

  HttpReply r = Get("/admin/db_ok.asp?action=alldel&id=1&id=3&id=5");
  EXPECT_NE(Text(r).find(u"<script>window.alert('批量删除成功！');location.replace('db_list.asp?"
                         u"page=1');</script>"),
            std::u16string::npos)
      << r.body;
  EXPECT_EQ(Value("select group_concat(id) from db"), "2,4");

  r = Get("/admin/db_ok.asp?action=del&id=2");
  EXPECT_NE(Text(r).find(u"删除成功！"), std::u16string::npos);
  EXPECT_EQ(Value("select group_concat(id) from db"), "4");

  // The maintenance page takes a site address with its scheme, percent-encoded.
  Sql(database(), "update db set source_url='src.com/list' where id=4");
  r = Get("/admin/db_manage_ok.asp?action=del_url&url=http%3A%2F%2Fsrc.com");
  EXPECT_NE(Text(r).find(u"来自src.com的数据删除成功！"), std::u16string::npos) << r.body;
  EXPECT_EQ(Value("select count(*) from db"), "0");
}

TEST_F(RecordPagesOverHttp, TheEntryAndMaintenanceFormsPostToTheirActionPages) {
  const std::u16string add = Text(Get("/admin/db_add.asp"));
  for (const char16_t* part :
       {u"charset=gb2312", u"action=\"db_add_ok.asp\"", u"onsubmit=\"return check()\"",
        u"http://<input type=\"text\" name=\"url\" size=\"41\" maxlength=\"255\"",
        u"http://<input type=\"text\" name=\"source_url\"",
        u"name=\"source\" size=\"25\" maxlength=\"25\"",
        u"name=\"title\" size=\"50\" maxlength=\"50\"", u"cols=\"41\" rows=\"5\"",
        u"描述字数超出限制！"})
    EXPECT_NE(add.find(part), std::u16string::npos) << ToUtf8(part);
  const std::u16string manage = Text(Get("/admin/db_manage.asp"));
  for (const char16_t* part : {u"action=\"db_manage_ok.asp\"", u"name=\"action\" value=\"del\"",
                               u"name=\"action\" value=\"del_url\"", u"name=\"url\"", u"confirm("})
    EXPECT_NE(manage.find(part), std::u16string::npos) << ToUtf8(part);
  EXPECT_FALSE(fs::exists(root_ / "data/PagebindLog.Log") &&
               ReadFile(root_ / "data/PagebindLog.Log").find("\\admin\\db_") != std::string::npos)
      << ReadFile(root_ / "data/PagebindLog.Log");
}

}  // namespace
}  // namespace ostrakan::testing
