// The remembered resolution of request paths must notice every change that alters the answer.
#include <gtest/gtest.h>

#include <fstream>

#include "engine/path_safety.h"
#include "support/page_harness.h"

namespace ostrakan::engine {
namespace {

namespace fs = std::filesystem;
using Kind = ResolvedPath::Kind;

TEST(PathResolver, SeesRetargetedLinksReplacedFilesAndNewIndexPages) {
  testing::TempDir dir;
  fs::create_directories(dir.path() / "site/list");
  fs::create_directories(dir.path() / "site/inside");
  std::ofstream(dir.path() / "secret.txt") << "outside";
  std::ofstream(dir.path() / "site/inside/page.html") << "inside";
  const fs::path root = fs::canonical(dir.path() / "site");
  PathResolver paths(root);

  fs::create_symlink(root / "inside/page.html", root / "list/p.html");
  EXPECT_EQ(paths.Resolve("/list/p.html").kind, Kind::StaticFile);
  fs::remove(root / "list/p.html");
  fs::create_symlink(dir.path() / "secret.txt", root / "list/p.html");
  EXPECT_EQ(paths.Resolve("/list/p.html").kind, Kind::Forbidden);

  // A folder answered by its index.html, until an index.asp comes, which goes first.
  std::ofstream(root / "list/index.html") << "index";
  EXPECT_EQ(paths.Resolve("/list/").virtualPath, "/list/index.html");
  std::ofstream(root / "list/index.asp") << "page";
  ResolvedPath r = paths.Resolve("/list/");
  EXPECT_EQ(r.kind, Kind::Page);
  EXPECT_EQ(r.virtualPath, "/list/index.asp");

  fs::remove(root / "list/index.html");
  EXPECT_EQ(paths.Resolve("/list/index.html").kind, Kind::NotFound);
}

}  // namespace
}  // namespace ostrakan::engine
