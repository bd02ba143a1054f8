#include "frame/page_blocks.h"

#include <gtest/gtest.h>

#include "platform/ado/connection.h"
#include "support/page_harness.h"

namespace ostrakan {
namespace {

using testing::RunBlocks;
using testing::TestRequest;
using testing::TestSite;

class GuardedProbe : public SitePage {
 public:
  GuardedProbe() : SitePage(u"\\admin\\probe") {
    Property(u"conn", conn);
    Property(u"connstr", connstr);
    Block(u"InitFunction2", [this] {
      Guard(u"InitFunction2",
            [this] { OpenConnection(*this, u"InitFunction2", DB, connstr, conn); });
    });
    Block(u"InitFunction3", [this] { Guard(u"InitFunction3", [this] { ran3 = true; }); });
  }
  Variant conn, connstr;
  bool ran3 = false;

 protected:
  void FirstBlock() override { PageHeaderGuard(Admin_Session); }
};

TEST(PageHeaderGuard, RefusesWithoutSessionButSendsCacheHeaders) {
  TestSite site;
  TestRequest request(site);
  GuardedProbe page;
  EXPECT_FALSE(RunBlocks(page, {u"InitFunction1", u"InitFunction2", u"InitFunction3"}));
  EXPECT_FALSE(page.ran3);
  EXPECT_EQ(request.text(),
            u"<Script>window.alert('您目前还没有登录或登录超时！');window.parent.location."
            u"replace('index.asp');</Script>");
  // no-store as well, so that no copy of an administration page outlives the sign-out.
  bool pragma = false, noCache = false, expires = false;
  for (const auto& [name, value] : request.response().Headers()) {
    pragma |= name == "Pragma" && value == "No-Cache";
    noCache |= name == "Cache-Control" && value == "no-cache, no-store";
    expires |= name == "Expires";
  }
  EXPECT_TRUE(pragma && noCache && expires);
  EXPECT_EQ(site.log(), "");
}

TEST(PageHeaderGuard, AnyNonEmptyValuePasses) {
  TestSite site;
  TestRequest request(site);
  request.session().Set(u"Ostrakan_Admin", Variant(0));
  GuardedProbe page;
  EXPECT_TRUE(RunBlocks(page, {u"InitFunction1", u"InitFunction2", u"InitFunction3"}));
  EXPECT_TRUE(page.ran3);
  EXPECT_EQ(page.connstr.str(), u"DBQ=" + FromUtf8(site.database().string()) +
                                    u";DefaultDir=;DRIVER={Microsoft Access Driver (*.mdb)};");
  ASSERT_TRUE(page.conn.As<ado::Connection>());
  EXPECT_EQ(page.conn.As<ado::Connection>()->State(), 1);
}

TEST(ConnectionBlock, AMissingDatabaseStopsThePageWithTheSetupMessage) {
  TestSite site;
  std::filesystem::remove(site.database());
  TestRequest request(site);
  request.session().Set(u"Ostrakan_Admin", Variant(u"admin"));
  GuardedProbe page;
  EXPECT_FALSE(RunBlocks(page, {u"InitFunction1", u"InitFunction2", u"InitFunction3"}));
  EXPECT_EQ(request.text(), u"数据库连接出错，请检查Setup.asp文件中的数据库参数设置。");
  EXPECT_TRUE(page.conn.IsObject() && !page.conn.object());  // Nothing
  EXPECT_FALSE(std::filesystem::exists(site.database()));    // never created
  EXPECT_NE(site.log().find("\\admin\\probe, InitFunction2: "), std::string::npos);
}

TEST(ConnectionBlock, AnEmptyDatabaseSettingMapsTheRootFolderAndFails) {
  TestSite site;
  TestRequest request(site);
  request.session().Set(u"Ostrakan_Admin", Variant(u"admin"));
  GuardedProbe page;
  auto args = testing::Settings();
  args[2] = u"";
  page.Invoke(u"InitFunction1", args);
  EXPECT_FALSE(RunBlocks(page, {u"InitFunction2"}));
  EXPECT_EQ(page.connstr.str(), u"DBQ=" + FromUtf8(site.root().string()) +
                                    u";DefaultDir=;DRIVER={Microsoft Access Driver (*.mdb)};");
}

}  // namespace
}  // namespace ostrakan
