// A site on a PostgreSQL cluster of its own, stopped and started again while the real engine
// serves the site. Run in the plain run only (the shared cluster is never touched).
#include <algorithm>
#include <atomic>

#include "http/site_fixture.h"
#include "platform/ado/pg_backend.h"

namespace ostrakan::testing {
namespace {

class PostgresFaults : public SiteTest {
 protected:
  static void SetUpTestSuite() {
    const char* bin = std::getenv("OSTRAKAN_PG_BIN");
    const std::filesystem::path pgBin = bin && *bin ? bin : "/usr/lib/postgresql/15/bin";
    if (OnPostgres() || !std::filesystem::exists(pgBin / "initdb")) return;
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
  static void Cluster(const std::string& command) { ASSERT_EQ(PgCluster(command, *cluster_), 0); }

  void SetUp() override {
    if (!cluster_) GTEST_SKIP() << "runs in the plain run, on a PostgreSQL cluster of its own";
    static std::atomic<int> serial{0};
    const std::string name = "faults_" + std::to_string(serial++);
    ServerSql(ServerUri("postgres", *cluster_), "CREATE DATABASE " + name);
    address_ = ServerUri(name, *cluster_);
    MakeSite(address_);
  }

  static inline std::string* cluster_ = nullptr;
  std::string address_;
};

constexpr char16_t kFailedOpen[] = u"数据库连接出错，请检查Setup.asp文件中的数据库参数设置。";

// While the cluster is down, pages answer as for a database that cannot be opened and serve and
// init stop with one sentence; once it is back, the site goes on without anything of ours.
TEST_F(PostgresFaults, AnOutageAnswersAsAFailedOpenAndARestartNeedsNothingOfOurs) {
  Sql(database(),
      "INSERT INTO db (title, url) SELECT 'record ' || i, 'v.test/' || i FROM "
      "generate_series(1, 30) AS i");
  const std::string admin = SignIn();
  ASSERT_TRUE(Holds(Text(client().Get("/admin/db_list.asp", {admin})), u"共30条记录"));

  Cluster("halt");
  // The idle connections of the pool now lead nowhere, and no new one can be made.
  EXPECT_TRUE(Holds(Text(client().Post("/admin/login.asp", SignInForm("admin", "x", "1234"))),
                    kFailedOpen));
  EXPECT_TRUE(Holds(Log(), "cannot be reached"));
  const CommandRun serve = Ostrakan("serve --site " + root().string() + " --listen 127.0.0.1:0");
  const CommandRun init = Ostrakan("init " + (dir_.path() / "second").string() +
                                   " --password secret123 --database '" + address_ + "'");
  Cluster("resume");
  for (const CommandRun& r : {serve, init}) {
    EXPECT_EQ(r.status, 1) << r.output;
    EXPECT_TRUE(Holds(r.output, "cannot be reached"));
    // One line, and no server listening.
    EXPECT_EQ(std::count(r.output.begin(), r.output.end(), '\n'), 1) << r.output;
  }
  EXPECT_FALSE(std::filesystem::exists(dir_.path() / "second" / "data"));
  // The signed-in session was kept in the database; the broken connections are not reused.
  EXPECT_TRUE(Holds(Text(client().Get("/admin/db_list.asp?page=2", {admin})), u"record 10"));
}

}  // namespace
}  // namespace ostrakan::testing
