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
    for (const char* f : {"site/index.asp", "site/Setup.asp", "site/admin/index.asp",
                          "site/admin/login.asp", "site/data/x.db", "site/list/data/x.html",
                          "site/a.db-wal", "site/image/logo.GIF", "secret.txt"}) {
      fs::create_directories((dir_.path() / f).parent_path());
      std::ofstream(dir_.path() / f) << "x";
    }
    fs::create_directories(dir_.path() / "site/empty");
    root_ = fs::canonical(dir_.path() / "site");
  }
  ResolvedPath Resolve(std::string_view path) { return ResolveRequestPath(root_, path); }

  testing::TempDir dir_;
  fs::path root_;
};

TEST_F(PathSafety, PagesFilesAndFoldersResolveToTheirIndex) {
  auto r = Resolve("/admin/login.asp");
  EXPECT_EQ(r.kind, Kind::Page);
  EXPECT_EQ(r.file, root_ / "admin/login.asp");
  EXPECT_EQ(r.virtualPath, "/admin/login.asp");
  EXPECT_EQ(Resolve("/admin/").virtualPath, "/admin/index.asp");
  r = Resolve("/admin");
  EXPECT_EQ(r.kind, Kind::AddSlash);
  EXPECT_EQ(r.virtualPath, "/admin/");
  EXPECT_EQ(Resolve("/empty/").kind, Kind::NotFound);  // no listing of folders
  EXPECT_EQ(Resolve("/nothing.css").kind, Kind::NotFound);
  EXPECT_EQ(Resolve("/image/logo.GIF").kind, Kind::StaticFile);
  EXPECT_FALSE(IsRefusedPath("/admin/database_list.asp"));
  EXPECT_FALSE(IsRefusedPath("/metadata/x.html"));
  EXPECT_FALSE(IsRefusedPath("/admin/Setup.asp"));  // only the root's Setup.asp is the settings
}

TEST_F(PathSafety, RefusesSettingsDataHiddenNamesAndEveryWayOutOfTheRoot) {
  for (const char* p :
       {"/Setup.asp", "/setup.ASP", "/data/x.db", "/DATA/x.db", "/list/data/x.html", "/a.db-wal",
        "/x.sqlite", "/x.mdb", "/PagebindLog.Log", "/admin/inc/body.Fix", "/.git/config",
        "/admin/.hidden", "/../secret.txt", "/admin/../../secret.txt", "/admin/..",
        "/admin\\..\\..\\secret.txt", "/./index.asp", "relative.asp", ""})
    EXPECT_EQ(Resolve(p).kind, Kind::Forbidden) << p;
  EXPECT_EQ(Resolve(std::string("/index.asp\0.txt", 16)).kind, Kind::Forbidden);
  // Links out of the root, into data/, or to a page file under another name.
  fs::create_symlink(dir_.path() / "secret.txt", root_ / "out.txt");
  fs::create_symlink(dir_.path(), root_ / "up");
  fs::create_symlink(root_ / "data/x.db", root_ / "copy.txt");
  fs::create_symlink(root_ / "admin/login.asp", root_ / "admin/login.txt");
  for (const char* p : {"/out.txt", "/up/secret.txt", "/copy.txt", "/admin/login.txt"})
    EXPECT_EQ(Resolve(p).kind, Kind::Forbidden) << p;
}

// The remembered resolution of request paths notices every change that alters the answer.
TEST_F(PathSafety, TheResolverSeesRetargetedLinksReplacedFilesAndNewIndexPages) {
  PathResolver paths(root_);
  fs::create_symlink(root_ / "image/logo.GIF", root_ / "list/p.html");
  EXPECT_EQ(paths.Resolve("/list/p.html").kind, Kind::StaticFile);
  fs::remove(root_ / "list/p.html");
  fs::create_symlink(dir_.path() / "secret.txt", root_ / "list/p.html");
  EXPECT_EQ(paths.Resolve("/list/p.html").kind, Kind::Forbidden);
  // A folder answered by its index.html, until an index.asp comes, which goes first.
  std::ofstream(root_ / "list/index.html") << "index";
  EXPECT_EQ(paths.Resolve("/list/").virtualPath, "/list/index.html");
  std::ofstream(root_ / "list/index.asp") << "page";
  ResolvedPath r = paths.Resolve("/list/");
  EXPECT_EQ(r.kind, Kind::Page);
  EXPECT_EQ(r.virtualPath, "/list/index.asp");
  fs::remove(root_ / "list/index.html");
  EXPECT_EQ(paths.Resolve("/list/index.html").kind, Kind::NotFound);
}

}  // namespace
}  // namespace ostrakan::engine
