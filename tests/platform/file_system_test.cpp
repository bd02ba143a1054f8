// The file-system seam: the real one writes whole files through a renamed temporary file, and
// batches of writes that land together.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "platform/fs/batched_writes.h"
#include "platform/fs/file_system.h"
#include "support/page_harness.h"

namespace ostrakan::fs {
namespace {

size_t Entries(const std::filesystem::path& folder) {
  return std::distance(std::filesystem::directory_iterator(folder), {});
}

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
  EXPECT_EQ(Entries(dir.path() / "sub"), 1u);
  EXPECT_TRUE(files.Exists(file));
  EXPECT_TRUE(files.Read(dir.path() / "none", bytes).has_value());
  EXPECT_EQ(bytes, std::string(100000, 'n'));  // a failed read leaves the buffer alone
}

// The process's umask as the kernel reports it, read without changing it.
std::string UmaskNow() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind("Umask:", 0) == 0) return line;
  return "";
}

// A written page gets the mode any new file of the process gets (0666 less the umask), and
// the umask that every other thread's files depend on stays as it is while pages are written.
TEST(RealFileSystem, WrittenFilesFollowTheUmaskWhichNoWriteChanges) {
  testing::TempDir dir;
  const mode_t previous = ::umask(027);
  const std::string expected = UmaskNow();
  ASSERT_NE(expected, "");
  std::atomic<bool> writing{true};
  std::atomic<int> changes{0};
  std::thread watcher([&] {
    while (writing)
      if (UmaskNow() != expected) ++changes;
  });
  for (int i = 0; i < 300; ++i)
    ASSERT_FALSE(FileSystem::Real().WriteAtomic(dir.path() / "page.html", "p").has_value());
  writing = false;
  watcher.join();
  ::umask(previous);
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(std::filesystem::status(dir.path() / "page.html").permissions(),
            std::filesystem::perms(0640));
}

// Batched writes change no target until Commit, then all at once; one that cannot be put in
// place is reported and leaves the others alone; what is never committed leaves nothing.
TEST(BatchedWrites, PutFilesInPlaceOnlyOnCommitAndCleanUpOtherwise) {
  testing::TempDir dir;
  FileSystem& real = FileSystem::Real();
  ASSERT_FALSE(real.WriteAtomic(dir.path() / "a.html", "old a").has_value());
  std::filesystem::create_directories(dir.path() / "list/b.html");  // not replaceable by a file
  std::string bytes;
  {
    BatchedWrites batch(real);
    EXPECT_TRUE(batch.WriteAtomic(dir.path() / "none/x.html", "x").has_value());
    EXPECT_FALSE(batch.WriteAtomic(dir.path() / "a.html", "new a").has_value());
    EXPECT_FALSE(batch.WriteAtomic(dir.path() / "list/c.html", "c").has_value());
    EXPECT_FALSE(batch.WriteAtomic(dir.path() / "list/b.html", "b").has_value());
    EXPECT_EQ(batch.staged(), 3u);
    EXPECT_FALSE(batch.Read(dir.path() / "a.html", bytes).has_value());
    EXPECT_EQ(bytes, "old a");
    EXPECT_FALSE(real.Exists(dir.path() / "list/c.html"));
    const auto failed = batch.Commit();
    ASSERT_EQ(failed.size(), 1u);
    EXPECT_EQ(failed[0].first, dir.path() / "list/b.html");
    EXPECT_EQ(failed[0].second.rfind("cannot replace " + (dir.path() / "list/b.html").string(), 0),
              0u);
    EXPECT_EQ(batch.staged(), 0u);
    EXPECT_FALSE(batch.WriteAtomic(dir.path() / "a.html", "dropped").has_value());
  }
  EXPECT_EQ(
      testing::ReadFile(dir.path() / "a.html") + testing::ReadFile(dir.path() / "list/c.html"),
      "new ac");
  EXPECT_TRUE(std::filesystem::is_directory(dir.path() / "list/b.html"));
  EXPECT_EQ(Entries(dir.path()), 2u);  // a.html and list/: no temporary file left
  EXPECT_EQ(Entries(dir.path() / "list"), 2u);
}

}  // namespace
}  // namespace ostrakan::fs
