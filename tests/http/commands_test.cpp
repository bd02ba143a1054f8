// The ostrakan command: making a site and serving it, as an administrator runs them.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdio>

#include "access/md5.h"
#include "http/http_client.h"
#include "support/page_harness.h"

namespace ostrakan::testing {
namespace {

namespace fs = std::filesystem;

struct CommandRun {
  int status = -1;
  std::string output;  // standard output and error together
};

// Runs the command to its end.
CommandRun Ostrakan(const std::vector<std::string>& args) {
  std::string command = OSTRAKAN_BINARY;
  for (const auto& a : args) command += " '" + a + "'";
  command += " 2>&1";
  CommandRun run;
  FILE* pipe = popen(command.c_str(), "r");
  char buf[4096];
  while (size_t n = fread(buf, 1, sizeof buf, pipe)) run.output.append(buf, n);
  int status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

// A running `ostrakan serve`, stopped with SIGTERM.
class ServeProcess {
 public:
  explicit ServeProcess(const fs::path& site) {
    int fds[2];
    if (pipe(fds) != 0) throw std::runtime_error("pipe");
    pid_ = fork();
    if (pid_ == 0) {
      dup2(fds[1], 1);
      close(fds[0]);
      execl(OSTRAKAN_BINARY, OSTRAKAN_BINARY, "serve", "--site", site.c_str(), "--listen",
            "127.0.0.1:0", "--threads", "4", nullptr);
      _exit(127);
    }
    close(fds[1]);
    out_ = fdopen(fds[0], "r");
    char line[1024];
    if (fgets(line, sizeof line, out_)) firstLine_ = line;
  }
  ~ServeProcess() {
    if (pid_ > 0 && status_ < 0) Stop();
    if (out_) fclose(out_);
  }
  // The exit status after SIGTERM.
  int Stop() {
    kill(pid_, SIGTERM);
    int status = 0;
    waitpid(pid_, &status, 0);
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return status_;
  }
  const std::string& firstLine() const { return firstLine_; }
  int port() const {
    size_t at = firstLine_.find("127.0.0.1:");
    return at == std::string::npos ? 0 : std::atoi(firstLine_.c_str() + at + 10);
  }

 private:
  pid_t pid_ = -1;
  int status_ = -1;
  FILE* out_ = nullptr;
  std::string firstLine_;
};

TEST(InitCommand, MakesASiteWithADatabaseAndAFirstAdministrator) {
  TempDir dir;
  fs::path site = dir.path() / "site";
  CommandRun run = Ostrakan({"init", site.string(), "--admin", "boss", "--password", "Secret42"});
  ASSERT_EQ(run.status, 0) << run.output;
  EXPECT_EQ(run.output.find("Secret42"), std::string::npos) << "a given password is not echoed";
  EXPECT_TRUE(fs::is_regular_file(site / "Setup.asp"));
  EXPECT_TRUE(fs::is_regular_file(site / "admin/login.asp"));
  fs::path db = site / "data/ostrakan.db";
  ASSERT_TRUE(fs::is_regular_file(db));
  EXPECT_EQ(SqlValue(db, "select username from admin"), "boss");
  EXPECT_EQ(SqlValue(db, "select password from admin"), ToUtf8(Md5(u"Secret42")));
  EXPECT_EQ(SqlValue(db, "select count(*) from admin"), "1");

  // A folder that holds anything is never overwritten.
  run = Ostrakan({"init", site.string()});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.output.find("not empty"), std::string::npos) << run.output;
}

TEST(InitCommand, PrintsAGeneratedPasswordOnceAndRefusesUntypeablePasswords) {
  TempDir dir;
  CommandRun run = Ostrakan({"init", (dir.path() / "a").string()});
  ASSERT_EQ(run.status, 0) << run.output;
  size_t at = run.output.find("Password: ");
  ASSERT_NE(at, std::string::npos) << run.output;
  std::string password = run.output.substr(at + 10, 12);
  EXPECT_EQ(password.find_first_not_of("abcdefghijkmnpqrstuvwxyzABCDEFGHJKLMNPQRSTUVWXYZ23456789"),
            std::string::npos);
  EXPECT_EQ(SqlValue(dir.path() / "a/data/ostrakan.db", "select password from admin"),
            ToUtf8(Md5(FromUtf8(password))));

  run = Ostrakan({"init", (dir.path() / "b").string(), "--password", "with blank"});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.output.find("sign-in page removes them"), std::string::npos) << run.output;
  EXPECT_FALSE(fs::exists(dir.path() / "b")) << "nothing half made is left behind";
}

TEST(ServeCommand, ReportsAnUnusableSiteInWordsBeforeListening) {
  TempDir dir;
  fs::path site = dir.path() / "site";
  CommandRun run = Ostrakan({"serve", "--site", site.string()});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.output.find("does not exist"), std::string::npos) << run.output;

  ASSERT_EQ(Ostrakan({"init", site.string(), "--password", "pw12345"}).status, 0);
  fs::path db = site / "data/ostrakan.db";
  fs::rename(db, site / "data/moved.db");
  run = Ostrakan({"serve", "--site", site.string()});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.output.find("the database " + db.string() + " (DB in Setup.asp) does not exist"),
            std::string::npos)
      << run.output;

  std::ofstream(db) << "this is not a database, just text that is long enough to be read";
  run = Ostrakan({"serve", "--site", site.string()});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.output.find("is not usable"), std::string::npos) << run.output;

  fs::remove(site / "Setup.asp");
  run = Ostrakan({"serve", "--site", site.string()});
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.output.find("has no Setup.asp"), std::string::npos) << run.output;

  EXPECT_EQ(Ostrakan({"serve"}).status, 2);
  EXPECT_EQ(Ostrakan({"serve", "--site", site.string(), "--threads", "0"}).status, 2);
  EXPECT_EQ(Ostrakan({"bogus"}).status, 2);
  run = Ostrakan({"--help"});
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.output.find("ostrakan serve --site DIR"), std::string::npos);
}

TEST(ServeCommand, ServesAFreshSiteAndStopsCleanlyOnSigterm) {
  TempDir dir;
  fs::path site = dir.path() / "site";
  ASSERT_EQ(Ostrakan({"init", site.string(), "--password", "pw12345"}).status, 0);
  ServeProcess server(site);
  ASSERT_NE(server.port(), 0) << server.firstLine();
  EXPECT_NE(server.firstLine().find("sign in at http://127.0.0.1:"), std::string::npos);
  HttpClient client(server.port());
  HttpReply r = client.Get("/admin/index.asp");
  EXPECT_EQ(r.status, 200) << r.error;
  EXPECT_NE(r.body.find("<form"), std::string::npos);
  EXPECT_EQ(client.Get("/Setup.asp").status, 403);
  EXPECT_EQ(client.Get("/data/ostrakan.db").status, 403);
  EXPECT_EQ(server.Stop(), 0);
}

}  // namespace
}  // namespace ostrakan::testing
