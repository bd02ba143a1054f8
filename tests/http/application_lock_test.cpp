// Application.Lock taken by a page that then fails: the engine gives the lock back when the
// page ends, so the pages after it still run.
#include <future>

#include "http/engine_fixture.h"

namespace ostrakan::testing {
namespace {

class ApplicationLock : public EngineTest {
 protected:
  static void SetUpTestSuite() {
    EngineTest::SetUpTestSuite();
    const std::u16string head = u"<%@ Component=\"Test.Page\" %><% InitFunction1 %>";
    WriteAnsi(root_ / "admin/lock_fail.asp", head + u"<% LockAndFail %>after");
    WriteAnsi(root_ / "admin/lock_visit.asp", head + u"<% LockedVisit %>");
  }
};

TEST_F(ApplicationLock, AnErrorWhileTheLockIsHeldDoesNotStopLaterPages) {
  EXPECT_EQ(client().Get("/admin/lock_fail.asp").body, "after");  // logged, swallowed
  EXPECT_NE(ErrorLog().find("LockAndFail: failed while holding the application lock"),
            std::string::npos);
  // Pages run on several threads; each of these may land on a thread other than the one
  // that failed, and would wait for ever on a lock nobody gives back.
  std::vector<std::future<HttpReply>> visits;
  for (int i = 0; i < 8; ++i)
    visits.push_back(std::async(std::launch::async, [this] {
      client().Get("/admin/lock_fail.asp");
      return client().Get("/admin/lock_visit.asp");
    }));
  std::set<std::string> answers;
  for (auto& v : visits) {
    HttpReply r = v.get();
    EXPECT_EQ(r.status, 200) << r.error;
    answers.insert(r.body);
  }
  EXPECT_EQ(answers.size(), 8u);  // every visit counted once, under the lock
  EXPECT_EQ(answers.count("visit 8"), 1u);
}

}  // namespace
}  // namespace ostrakan::testing
