// A site on a PostgreSQL cluster of its own, stopped and started again while the real engine
// serves the site. Run in the plain run only (the shared cluster is never touched).
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include "http/site_fixture.h"
#include "platform/ado/pg_backend.h"
#include "support/test_database.h"

namespace ostrakan::testing {
namespace {

namespace fs = std::filesystem;

fs::path PgBin() {
  const char* bin = std::getenv("OSTRAKAN_PG_BIN");
  return bin && *bin ? bin : "/usr/lib/postgresql/15/bin";
}

// Runs `command`; its exit status and what it wrote to standard error.
struct Ran {
  int status;
  std::string err;
};
Ran RunCommand(const std::string& command, const fs::path& errFile) {
  const int rc = std::system((command + " >/dev/null 2>" + errFile.string()).c_str());
  return {WIFEXITED(rc) ? WEXITSTATUS(rc) : -1, ReadFile(errFile)};
}

class PostgresFaults : public SiteTest {
 protected:
  static void SetUpTestSuite() {
    if (OnPostgres() || !fs::exists(PgBin() / "initdb")) return;
    cluster_ = new std::string("/tmp/ostrakan-pgfaults-" + std::to_string(getpid()));
    Cluster("start");
  }
  static void TearDownTestSuite() {
    if (!cluster_) return;
    ado::DropIdleServerSessions();
    Cluster("stop");
    delete cluster_;
    cluster_ = nullptr;
  }
  static void Cluster(const std::string& command) {
    const std::string script = (SourceDir() / "tests/support/pg_cluster.sh").string();
    ASSERT_EQ(std::system(("bash " + script + " " + command + " " + *cluster_).c_str()), 0)
        << command;
  }
  static std::string Address(const std::string& database) {
    return "postgresql:///" + database + "?host=" + *cluster_ + "&user=ostrakan";
  }

  void SetUp() override {
    if (!cluster_) GTEST_SKIP() << "runs in the plain run, on a PostgreSQL cluster of its own";
    static std::atomic<int> serial{0};
    database_ = "faults_" + std::to_string(serial++);
    ServerSql(Address("postgres"), "CREATE DATABASE " + database_);
    MakeSite(Address(database_));
  }
  void Records(int n) {
    Sql(database(), "INSERT INTO db (title, url) SELECT 'record ' || i, 'v.test/' || i FROM " +
                        ("generate_series(1, " + std::to_string(n) + ") AS i"));
  }

  static std::string* cluster_;
  std::string database_;
};
std::string* PostgresFaults::cluster_ = nullptr;

constexpr char16_t kFailedOpen[] = u"数据库连接出错，请检查Setup.asp文件中的数据库参数设置。";

TEST_F(PostgresFaults, AnOutageAnswersAsAFailedOpenAndARestartNeedsNothingOfOurs) {
  Records(30);
  const std::string admin = SignIn();
  ASSERT_TRUE(Holds(Text(client().Get("/admin/db_list.asp", {admin})), u"共30条记录"));

  Cluster("halt");
  // The idle connections of the pool now lead nowhere, and no new one can be made.
  EXPECT_TRUE(Holds(Text(client().Post("/admin/login.asp", SignInForm("admin", "x", "1234"))),
                    kFailedOpen));
  EXPECT_TRUE(Holds(Log(), "cannot be reached"));

  Cluster("resume");
  // The signed-in session was kept in the database; the broken connections are not reused.
  EXPECT_TRUE(Holds(Text(client().Get("/admin/db_list.asp?page=2", {admin})), u"record 10"));
}

TEST_F(PostgresFaults, AnUnreachableDatabaseStopsServeAndInitWithOneSentence) {
  Cluster("halt");
  const fs::path errFile = dir_.path() / "err.txt";
  // Bounded, should a server start listening after all.
  const std::string binary = std::string("timeout 30 ") + OSTRAKAN_BINARY;
  const Ran serve =
      RunCommand(binary + " serve --site " + root().string() + " --listen 127.0.0.1:0", errFile);
  const Ran init = RunCommand(binary + " init " + (dir_.path() / "second").string() +
                                  " --password secret123 --database '" + Address(database_) + "'",
                              errFile);
  Cluster("resume");
  for (const Ran& r : {serve, init}) {
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_TRUE(Holds(r.err, "cannot be reached"));
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;  // one line, no listening
  }
  EXPECT_FALSE(fs::exists(dir_.path() / "second" / "data"));
}

}  // namespace
}  // namespace ostrakan::testing
