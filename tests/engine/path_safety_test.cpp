#include "engine/path_safety.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/page_harness.h"

namespace ostrakan::engine {
namespace {

namespace fs = std::filesystem;
using Kind = ResolvedPath::Kind;

class PathSafety : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* f :
         {"site/index.asp", "site/Setup.asp", "site/admin/index.asp", "site/admin/login.asp",
          "site/admin/css/style.css", "site/data/x.db", "site/list/data/x.html",
          "site/admin/inc/head.fix", "site/a.db-wal", "site/image/logo.GIF", "secret.txt"})
      Touch(f);
    fs::create_directories(dir_.path() / "site/empty");
    root_ = fs::canonical(dir_.path() / "site");
  }
  void Touch(const std::string& relative) {
    fs::path p = dir_.path() / relative;
    fs::create_directories(p.parent_path());
    std::ofstream(p) << "x";
  }
  ResolvedPath Resolve(std::string_view path) { return ResolveRequestPath(root_, path); }

  testing::TempDir dir_;
  fs::path root_;
};

TEST_F(PathSafety, PagesRunAndFoldersAnswerWithTheirIndex) {
  auto r = Resolve("/admin/login.asp");
  EXPECT_EQ(r.kind, Kind::Page);
  EXPECT_EQ(r.file, root_ / "admin/login.asp");
  EXPECT_EQ(r.virtualPath, "/admin/login.asp");

  r = Resolve("/");
  EXPECT_EQ(r.kind, Kind::Page);
  EXPECT_EQ(r.virtualPath, "/index.asp");
  r = Resolve("/admin/");
  EXPECT_EQ(r.kind, Kind::Page);
  EXPECT_EQ(r.virtualPath, "/admin/index.asp");
  r = Resolve("/admin");
  EXPECT_EQ(r.kind, Kind::AddSlash);
  EXPECT_EQ(r.virtualPath, "/admin/");
  EXPECT_EQ(Resolve("/empty/").kind, Kind::NotFound);  // no listing of folders
  EXPECT_EQ(Resolve("/admin/missing.asp").kind, Kind::NotFound);
  EXPECT_EQ(Resolve("/nothing.css").kind, Kind::NotFound);
}

TEST_F(PathSafety, StaticFilesAreServedButNeverPageSource) {
  EXPECT_EQ(Resolve("/admin/css/style.css").kind, Kind::StaticFile);
  EXPECT_EQ(Resolve("/image/logo.GIF").kind, Kind::StaticFile);
  // A link with another name that leads to a page file does not send its source.
  fs::create_symlink(root_ / "admin/login.asp", root_ / "admin/login.txt");
  EXPECT_EQ(Resolve("/admin/login.txt").kind, Kind::Forbidden);
}

TEST_F(PathSafety, RefusesSetupDataDatabasesLogsAndHiddenNames) {
  for (const char* p :
       {"/Setup.asp", "/setup.ASP", "/data/x.db", "/DATA/x.db", "/data/", "/list/data/x.html",
        "/a.db-wal", "/x.sqlite", "/x.db-journal", "/PagebindLog.Log", "/admin/inc/head.fix",
        "/admin/inc/body.Fix", "/.git/config", "/admin/.hidden"})
    EXPECT_EQ(Resolve(p).kind, Kind::Forbidden) << p;
}

TEST_F(PathSafety, RefusesEveryWayOutOfTheRoot) {
  for (const char* p : {"/../secret.txt", "/admin/../../secret.txt", "/..", "/admin/..",
                        "/admin\\..\\..\\secret.txt", "/./index.asp", "relative.asp", ""})
    EXPECT_EQ(Resolve(p).kind, Kind::Forbidden) << p;
  EXPECT_EQ(Resolve(std::string("/index.asp\0.txt", 16)).kind, Kind::Forbidden);

  fs::create_symlink(dir_.path() / "secret.txt", root_ / "out.txt");
  fs::create_symlink(dir_.path(), root_ / "up");
  fs::create_symlink(root_ / "data/x.db", root_ / "copy.txt");
  EXPECT_EQ(Resolve("/out.txt").kind, Kind::Forbidden);
  EXPECT_EQ(Resolve("/up/secret.txt").kind, Kind::Forbidden);
  EXPECT_EQ(Resolve("/copy.txt").kind, Kind::Forbidden);  // a link into data/
}

TEST(RefusedPath, JudgesTheNameNotTheFile) {
  EXPECT_FALSE(IsRefusedPath("/admin/database_list.asp"));
  EXPECT_FALSE(IsRefusedPath("/metadata/x.html"));
  EXPECT_FALSE(IsRefusedPath("/admin/Setup.asp"));  // only the root's Setup.asp is the settings
  EXPECT_TRUE(IsRefusedPath("/x.mdb"));
}

}  // namespace
}  // namespace ostrakan::engine
