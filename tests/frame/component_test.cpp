// A page component's blocks: errors logged by the guard, the end of a response, settings and
// properties, the object context and the connection block. (The sign-in guard, its headers and
// the message of a missing database are met over HTTP in tests/http/site_test.cpp.)
#include "frame/component.h"

#include <gtest/gtest.h>

#include "frame/page_blocks.h"
#include "frame/site_page.h"
#include "platform/ado/connection.h"
#include "support/holds.h"
#include "support/page_harness.h"

namespace ostrakan {
namespace {

using testing::Holds;
using testing::RunBlocks;

// A signed-in page whose blocks open the connection or fail in the ways a real page can.
class Probe : public SitePage {
 public:
  Probe() : SitePage(u"\\admin\\probe") {
    Describe<Probe>([](Describer<Probe>& m) {
      m.Property(u"conn", &Probe::conn);
      m.Property(u"connstr", &Probe::connstr);
      // Each block is guarded by its description, logged with the block's name.
      m.Block(u"InitFunction2",
              [](Probe& p) { OpenConnection(p, u"InitFunction2", p.DB, p.connstr, p.conn); });
      m.Block(u"InitFunction3", [] { throw TypeMismatch(); });
      m.Block(u"InitFunction4", [](Probe& p) { p.Guard(u"Helper", [] { WriteAndEnd(u"stop"); }); });
      m.Block(u"InitFunction5", [] { throw std::runtime_error("disk full"); });
      m.Block(u"InitFunction6", [] { (void)std::vector<int>().at(3); });
      m.Block(u"InitFunction7", &Probe::Mark);
    });
  }
  void Mark() { ran7 = true; }
  Variant conn, connstr;
  bool ran7 = false;

 protected:
  void FirstBlock() override { PageHeaderGuard(Admin_Session); }
};

class Page : public ::testing::Test {
 protected:
  Page() { session->Set(u"Ostrakan_Admin", Variant(u"admin")); }
  // The database that the page's connection string names.
  std::u16string Named() { return ado::DatabasePathOf(page.connstr.str()).value_or(u"none"); }
  testing::TestSite site;
  std::shared_ptr<Session> session = std::make_shared<Session>();
  testing::TestRequest request{site, u"/admin/probe.asp", session};
  Probe page;
};

TEST_F(Page, AnEndStopsThePageUnloggedAndAnErrorIsLoggedOnceAndThePageGoesOn) {
  // Ending the response passes through nested methods, unlogged, and ends the page.
  EXPECT_FALSE(RunBlocks(page, {u"InitFunction4", u"InitFunction7"}));
  EXPECT_FALSE(page.ran7);
  EXPECT_TRUE(request.response().ended());
  EXPECT_EQ(request.text(), u"stop");
  EXPECT_EQ(site.log(), "");

  EXPECT_TRUE(RunBlocks(page, {u"InitFunction1", u"InitFunction3", u"InitFunction7"}));
  EXPECT_TRUE(page.ran7);
  EXPECT_TRUE(RunBlocks(page, {u"InitFunction5"}));  // a foreign exception, the same way
  const std::string log = site.log();
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2);
  EXPECT_TRUE(Holds(log, "    \\admin\\probe, InitFunction3: Type mismatch\r\n"));
  EXPECT_TRUE(Holds(log, "    \\admin\\probe, InitFunction5: disk full\r\n"));
#ifdef OSTRAKAN_STRICT
  // In the test build a programming error is not swallowed into the log.
  EXPECT_THROW(RunBlocks(page, {u"InitFunction6"}), std::out_of_range);
  EXPECT_EQ(site.log(), log);
#endif
}

TEST_F(Page, SettingsAreCopiedAndObjectsShared) {
  auto args = testing::Settings();
  auto shared = std::make_shared<Object>();
  args[4] = Variant(shared);
  page.Invoke(u"InitFunction1", args);
  args[0] = u"changed";
  EXPECT_EQ(CStr(page.GetProperty(u"website_title")), u"测试站点");  // names ignore case
  EXPECT_EQ(page.ODB.As<Object>(), shared);
  page.SetProperty(u"CONN", Variant(5));
  EXPECT_EQ(CLng(page.conn), 5);
}

TEST_F(Page, PathsMapFromThePageFolderAndNeverLeaveTheSite) {
  const std::u16string root = FromUtf8(site.root().string());
  const Server& server = CurrentServer();
  EXPECT_EQ(server.MapPath(u"../data/test.db"), root + u"/data/test.db");
  EXPECT_EQ(server.MapPath(u"\\a\\.\\b\\..\\c//d/"), root + u"/a/c/d");
  EXPECT_EQ(server.MapPath(u"x/../.."), root);
  EXPECT_EQ(server.MapPath(u""), root + u"/admin");
  EXPECT_THROW(server.MapPath(u"../../x"), ScriptError);
  EXPECT_THROW(server.MapPath(u"/a/../../admin"), ScriptError);
}

TEST(PageContext, IsAttachedByConstructionAndClearedByDestruction) {
  testing::TestSite site;
  {
    testing::TestRequest request(site);
    auto first = std::make_unique<Probe>();
    EXPECT_EQ(&CurrentResponse(), &request.response());
    first.reset();  // releasing a component clears the context of the thread
    EXPECT_THROW(CurrentResponse(), ScriptError);
  }
  // Outside a request, construction succeeds with an empty context.
  Probe lonely;
  EXPECT_FALSE(CurrentContext().request);
  EXPECT_TRUE(RunBlocks(lonely, {u"InitFunction7"}));
}

TEST_F(Page, AnyNonEmptyValuePassesAndTheConnectionOpensOrAMissingDatabaseStopsThePage) {
  session->Set(u"Ostrakan_Admin", Variant(0));
  EXPECT_TRUE(RunBlocks(page, {u"InitFunction1", u"InitFunction2", u"InitFunction7"}));
  EXPECT_TRUE(page.ran7);
  EXPECT_EQ(Named(), FromUtf8(site.database().string()));
  ASSERT_TRUE(page.conn.As<ado::Connection>());
  EXPECT_EQ(page.conn.As<ado::Connection>()->State(), 1);

  std::filesystem::remove(site.database());
  EXPECT_FALSE(RunBlocks(page, {u"InitFunction2", u"InitFunction7"}));
  EXPECT_TRUE(page.conn.IsObject() && !page.conn.object());  // Nothing
  EXPECT_TRUE(Holds(site.log(), "\\admin\\probe, InitFunction2: "));
  // An empty database setting maps the site's root folder, which is no database either.
  auto args = testing::Settings();
  args[2] = u"";
  page.Invoke(u"InitFunction1", args);
  EXPECT_FALSE(RunBlocks(page, {u"InitFunction2"}));
  EXPECT_EQ(Named(), FromUtf8(site.root().string()));
}

}  // namespace
}  // namespace ostrakan
