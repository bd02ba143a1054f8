// serve refuses to start on a database that the serving user cannot write, and says what to
// fix, instead of answering every add with an empty page later.
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <sstream>

#include "engine/commands.h"
#include "support/page_harness.h"

namespace ostrakan::engine {
namespace {

namespace fs = std::filesystem;

// CheckSite as an unprivileged user: root may write anything, so as root the check runs in a
// child process that has become "nobody".
std::string CheckAsOtherUser(const fs::path& site) {
  if (::geteuid() != 0) return CheckSite(site);
  int pipefd[2];
  if (::pipe(pipefd) != 0) return "pipe failed";
  pid_t child = ::fork();
  if (child == 0) {
    ::close(pipefd[0]);
    if (::setgid(65534) != 0 || ::setuid(65534) != 0) ::_exit(2);
    std::string problem = CheckSite(site);
    ssize_t n = ::write(pipefd[1], problem.data(), problem.size());
    ::_exit(n < 0 ? 3 : 0);
  }
  ::close(pipefd[1]);
  std::string out;
  char buf[512];
  for (ssize_t n; (n = ::read(pipefd[0], buf, sizeof buf)) > 0;) out.append(buf, n);
  ::close(pipefd[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  return out;
}

TEST(ServeCheck, NamesTheDatabaseFolderOrJournalThatCannotBeWritten) {
  testing::TempDir dir;
  fs::path site = dir.path() / "site";
  InitOptions init{site, testing::SourceDir() / "site", "admin", "secret123"};
  std::ostringstream out, err;
  ASSERT_EQ(RunInit(init, out, err), 0) << err.str();
  fs::path db = site / "data/ostrakan.db";
  EXPECT_EQ(CheckSite(site), "");

  // Readable by everyone, writable by its owner only.
  fs::permissions(db, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  std::string problem = CheckAsOtherUser(site);
  EXPECT_NE(problem.find("the database " + fs::absolute(db).string() + " is not writable"),
            std::string::npos)
      << problem;
  EXPECT_NE(problem.find("write permission"), std::string::npos) << problem;

  // The file may be writable while the folder, where SQLite makes its journals, is not.
  fs::permissions(db, fs::perms::all);
  fs::permissions(db.parent_path(), fs::perms::owner_all | fs::perms::group_read |
                                        fs::perms::group_exec | fs::perms::others_read |
                                        fs::perms::others_exec);
  problem = CheckAsOtherUser(site);
  EXPECT_NE(problem.find("database folder"), std::string::npos) << problem;

  fs::permissions(db.parent_path(), fs::perms::all);
  std::ofstream(db.string() + "-wal") << "";
  fs::permissions(db.string() + "-wal", fs::perms::owner_read | fs::perms::owner_write);
  problem = CheckAsOtherUser(site);
  EXPECT_NE(problem.find("ostrakan.db-wal is not writable"), std::string::npos) << problem;
}

}  // namespace
}  // namespace ostrakan::engine
