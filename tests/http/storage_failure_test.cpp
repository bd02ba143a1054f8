// A store that the disk refuses, over the real server: the data folder is a small tmpfs that the
// test fills or makes read-only (mounting needs root; elsewhere these tests are skipped). The
// page says why in one sentence; the error goes to the log, or to standard error.
#include <sqlite3.h>
#include <sys/mount.h>

#include <cstring>
#include <fstream>

#include "http/site_fixture.h"
#include "platform/ado/database_pool.h"

namespace ostrakan::testing {
namespace {

namespace fs = std::filesystem;

constexpr char16_t kFull[] = u"服务器的磁盘已满，数据无法保存，请腾出空间后再试。";
constexpr char16_t kReadOnly[] =
    u"数据库文件或其所在文件夹不可写，数据无法保存，请检查它们的权限。";

class StorageFailure : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    const fs::path saved = dir_.path() / "data.saved";
    fs::rename(data(), saved);
    fs::create_directory(data());
    if (::mount("tmpfs", data().c_str(), "tmpfs", 0, "size=2m") != 0)
      GTEST_SKIP() << "cannot mount a tmpfs here (needs root): " << std::strerror(errno);
    mounted_ = true;
    fs::copy(saved, data(), fs::copy_options::recursive);
    cookie_ = SignIn();
  }
  void TearDown() override {
    server_.reset();  // no page holds a file of the mount any more
    if (mounted_) ::umount2(data().c_str(), MNT_DETACH);
  }
  fs::path data() const { return root() / "data"; }

  // Posts a new record; returns the page and what the server wrote on standard error meanwhile.
  std::pair<std::u16string, std::string> PostRecord() {
    ::testing::internal::CaptureStderr();
    std::u16string page = Text(client().Post(
        "/admin/db_add_ok.asp", "title=t&url=disk.test/1&source=s&source_url=s.test", {cookie_}));
    return {page, ::testing::internal::GetCapturedStderr()};
  }

  bool mounted_ = false;
  std::string cookie_;
};

// Full before the page opens the database (no shared-memory file can be made) and while it
// stores (the write-ahead log cannot grow; another connection keeps the files open).
TEST_F(StorageFailure, AFullDiskIsNamedOnThePageAndTheErrorGoesToStandardError) {
  for (bool heldOpen : {false, true}) {
    SCOPED_TRACE(heldOpen ? "full while storing" : "full before opening");
    sqlite3* other = nullptr;
    if (heldOpen) {
      sqlite3_open_v2(database().c_str(), &other, SQLITE_OPEN_READWRITE, nullptr);
      sqlite3_exec(other, "select count(*) from db", nullptr, nullptr, nullptr);
    }
    // Connections the server keeps for reuse hold the log open as `other` does; without them,
    // the next page has to create it.
    ado::CloseIdleDatabases();
    std::ofstream filler(data() / "filler", std::ios::binary);  // takes every free byte
    const std::string block(4096, 'f');
    while (filler.write(block.data(), block.size())) {
    }
    filler.close();
    auto [page, stderrText] = PostRecord();
    EXPECT_TRUE(Holds(page, kFull));
    EXPECT_FALSE(Holds(page, u"添加成功"));
    // The log is on the full disk too, so the line comes out on standard error.
    const char* line = heldOpen ? "db_add_ok, InitFunction3: database or disk is full"
                                : "db_add_ok, InitFunction2: ";
    EXPECT_TRUE(Holds(stderrText, line));
    fs::remove(data() / "filler");
    sqlite3_close(other);
    EXPECT_EQ(Value("select count(*) from db"), "0");
  }
  // With room again the same post is stored.
  EXPECT_TRUE(Holds(PostRecord().first, u"添加成功"));
  EXPECT_EQ(Value("select url from db"), "disk.test/1");
}

TEST_F(StorageFailure, AReadOnlyDatabaseIsNamedOnThePageNotBlamedOnSetup) {
  ado::CloseIdleDatabases();  // a kept connection holds the file open for writing
  ASSERT_EQ(::mount(nullptr, data().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0)
      << std::strerror(errno);
  auto [page, stderrText] = PostRecord();
  EXPECT_TRUE(Holds(page, kReadOnly));
  EXPECT_FALSE(Holds(page, u"Setup.asp"));
  EXPECT_TRUE(Holds(stderrText, "db_add_ok, "));
  // A page that only reads cannot open the database either (SQLite needs to write its
  // shared-memory file beside it): it names the same cause.
  EXPECT_TRUE(Holds(Text(client().Get("/admin/db_list.asp", {cookie_})), kReadOnly));
  ASSERT_EQ(::mount(nullptr, data().c_str(), nullptr, MS_REMOUNT, nullptr), 0);
  EXPECT_EQ(Value("select count(*) from db"), "0");
}

}  // namespace
}  // namespace ostrakan::testing
