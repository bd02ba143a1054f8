#include "frame/component.h"

#include <gtest/gtest.h>

#include "frame/page_blocks.h"
#include "frame/site_page.h"
#include "support/page_harness.h"

namespace ostrakan {
namespace {

using testing::RunBlocks;
using testing::TestRequest;
using testing::TestSite;

// A page whose blocks fail in the ways a real page can.
class Probe : public SitePage {
 public:
  Probe() : SitePage(u"\\admin\\sort_manage") {
    Property(u"conn", conn);
    Block(u"InitFunction2", [this] { Guard(u"InitFunction2", [] { throw TypeMismatch(); }); });
    Block(u"InitFunction3", [this] { Guard(u"InitFunction3", [this] { ran3 = true; }); });
    Block(u"InitFunction4", [this] { Guard(u"InitFunction4", [this] { Helper(); }); });
    Block(u"InitFunction5",
          [this] { Guard(u"InitFunction5", [] { throw std::runtime_error("disk full"); }); });
    Block(u"InitFunction6",
          [this] { Guard(u"InitFunction6", [] { (void)std::vector<int>().at(3); }); });
  }
  void Helper() {
    Guard(u"Helper", [] { WriteAndEnd(u"stop"); });
  }
  Variant conn;
  bool ran3 = false;
};

TEST(Component, AnErrorIsLoggedOnceAndThePageGoesOn) {
  TestSite site;
  TestRequest request(site);
  Probe page;
  EXPECT_TRUE(RunBlocks(page, {u"InitFunction1", u"InitFunction2", u"InitFunction3"}));
  EXPECT_TRUE(page.ran3);
  std::string log = site.log();
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1);
  EXPECT_NE(log.find("    \\admin\\sort_manage, InitFunction2: Type mismatch\r\n"),
            std::string::npos)
      << log;
  // A foreign exception is logged the same way.
  EXPECT_TRUE(RunBlocks(page, {u"InitFunction5"}));
  EXPECT_NE(site.log().find("\\admin\\sort_manage, InitFunction5: disk full"), std::string::npos);
}

#ifdef OSTRAKAN_STRICT
// In the test build a programming error is not swallowed into the log.
TEST(Component, AProgrammingErrorEscapesTheGuardInTheTestBuild) {
  TestSite site;
  TestRequest request(site);
  Probe page;
  EXPECT_THROW(RunBlocks(page, {u"InitFunction6"}), std::out_of_range);
  EXPECT_EQ(site.log(), "");
}
#endif

TEST(Component, EndingTheResponsePassesThroughNestedMethodsUnlogged) {
  TestSite site;
  TestRequest request(site);
  Probe page;
  EXPECT_FALSE(RunBlocks(page, {u"InitFunction4", u"InitFunction3"}));
  EXPECT_FALSE(page.ran3);
  EXPECT_TRUE(request.response().ended());
  EXPECT_EQ(request.text(), u"stop");
  EXPECT_EQ(site.log(), "");
}

TEST(Component, SettingsAreCopiedAndObjectsShared) {
  TestSite site;
  TestRequest request(site);
  Probe page;
  auto args = testing::Settings();
  struct Connection : Object {};
  auto shared = std::make_shared<Connection>();
  args[4] = Variant(shared);
  page.Invoke(u"InitFunction1", args);
  EXPECT_EQ(page.WebSite_Title.str(), u"测试站点");
  EXPECT_EQ(page.ODB.As<Connection>(), shared);
  args[0] = u"changed";
  EXPECT_EQ(CStr(page.GetProperty(u"website_title")), u"测试站点");  // names ignore case
  EXPECT_THROW(page.GetProperty(u"nope"), ScriptError);
  page.SetProperty(u"CONN", Variant(5));
  EXPECT_EQ(CLng(page.conn), 5);
}

TEST(Component, ContextIsAttachedByConstructionAndClearedByDestruction) {
  TestSite site;
  {
    TestRequest request(site);
    auto first = std::make_unique<Probe>();
    EXPECT_EQ(&CurrentResponse(), &request.response());
    EXPECT_TRUE(CurrentContext().scriptControl);
    first.reset();  // releasing a component clears the context of the thread
    EXPECT_THROW(CurrentResponse(), ScriptError);
  }
  // Outside a request, construction succeeds with an empty context.
  Probe lonely;
  EXPECT_FALSE(CurrentContext().request);
  EXPECT_TRUE(RunBlocks(lonely, {u"InitFunction3"}));
}

}  // namespace
}  // namespace ostrakan
