// The file-system seam: the real one writes whole files through a renamed temporary file; the
// memory double fails where the disk would.
#include <gtest/gtest.h>

#include "platform/fs/file_system.h"
#include "support/page_harness.h"

namespace ostrakan::fs {
namespace {

TEST(RealFileSystem, WritesReplacesAndReadsWholeFilesWithoutLeavingTemporaries) {
  testing::TempDir dir;
  FileSystem& files = FileSystem::Real();
  const auto file = dir.path() / "sub/page.html";
  EXPECT_TRUE(files.WriteAtomic(file, "x").has_value());  // no folder yet
  EXPECT_FALSE(files.MakeFolder(dir.path() / "sub").has_value());
  EXPECT_FALSE(files.MakeFolder(dir.path() / "sub").has_value());  // already there: fine
  EXPECT_FALSE(files.WriteAtomic(file, "old").has_value());
  EXPECT_FALSE(files.WriteAtomic(file, std::string(100000, 'n')).has_value());
  std::string bytes;
  EXPECT_FALSE(files.Read(file, bytes).has_value());
  EXPECT_EQ(bytes, std::string(100000, 'n'));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path() / "sub"), {}), 1);
  EXPECT_TRUE(files.Exists(file));
  EXPECT_TRUE(files.Read(dir.path() / "none", bytes).has_value());
  EXPECT_EQ(bytes, std::string(100000, 'n'));  // a failed read leaves the buffer alone
}

TEST(MemoryFileSystem, FailsWhereTheDiskWould) {
  MemoryFileSystem files;
  files.Put("/site/template/t.asp", "tpl");
  std::string bytes;
  EXPECT_FALSE(files.Read("/site/template/../template/t.asp", bytes).has_value());
  EXPECT_EQ(bytes, "tpl");
  EXPECT_TRUE(files.WriteAtomic("/site/list/a.html", "a").has_value());
  EXPECT_FALSE(files.MakeFolder("/site/list").has_value());
  EXPECT_FALSE(files.WriteAtomic("/site/list/a.html", "a").has_value());
  files.FailWrites("/site");
  EXPECT_TRUE(files.WriteAtomic("/site/list/a.html", "b").has_value());
  EXPECT_EQ(files.files().at("/site/list/a.html"), "a");
  EXPECT_TRUE(files.MakeFolder("/site/template/t.asp").has_value());
}

}  // namespace
}  // namespace ostrakan::fs
