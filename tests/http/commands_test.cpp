// The ostrakan program as an administrator runs it: making a site, serving it, rebuilding its
// category pages beside the server. (What each command checks is the engine folder's test.)
#include <signal.h>

#include <cstring>

#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

namespace fs = std::filesystem;

TEST(Commands, ASiteIsMadeServedRebuiltBesideTheServerAndStoppedOnSigterm) {
  TempDir dir;
  const fs::path site = dir.path() / "site", db = site / "data/ostrakan.db";
  CommandRun run = Ostrakan("serve --site " + site.string());
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(Holds(run.output, "does not exist"));  // in words
  EXPECT_EQ(Ostrakan("serve --site " + site.string() + " --threads 0").status, 2);
  EXPECT_TRUE(Holds(Ostrakan("--help").output, "ostrakan serve --site DIR"));

  run = Ostrakan("init " + site.string() + " --admin boss --password Secret42");
  ASSERT_EQ(run.status, 0) << run.output;
  EXPECT_FALSE(Holds(run.output, "Secret42")) << "a given password is not echoed";

  // The shell says the server's process id, then the server its address.
  const std::string serve = "echo $$; exec " + std::string(OSTRAKAN_BINARY) + " serve --site " +
                            site.string() + " --listen 127.0.0.1:0 --threads 4";
  FILE* serving = popen(serve.c_str(), "r");
  char pid[32] = "", line[1024] = "";
  fgets(pid, sizeof pid, serving);
  fgets(line, sizeof line, serving);
  const char* at = std::strstr(line, "sign in at http://127.0.0.1:");
  EXPECT_NE(at, nullptr) << line;
  HttpClient client(at ? std::atoi(at + 28) : 1);
  EXPECT_TRUE(Holds(client.Get("/admin/index.asp").body, "<form"));
  // The category pages rebuilt by another process are served at once.
  Sql(db,
      "delete from sort; insert into sort (id, sort, sort_id, alphabetical_id) values "
      "(101, '音乐', 0, 0), (102, '摇滚', 101, 18)");
  run = Ostrakan("generate --site " + site.string() + " --json");
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(run.output.ends_with("\n{\"files\":2,\"failed\":0}\n")) << run.output;
  EXPECT_EQ(client.Get("/list/list_102.html").status, 200);

  kill(std::atoi(pid), SIGTERM);
  const int status = pclose(serving);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

}  // namespace
}  // namespace ostrakan::testing
