// What a browser asks of every site besides its pages, and a page error repeated on every
// request.
#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

size_t ErrorLogLines() {
  std::string log = ReadFile(ErrorLogPath());
  return static_cast<size_t>(std::count(log.begin(), log.end(), '\n'));
}

TEST_F(SiteTest, TheSiteHasAnIcon) {
  HttpReply icon = client().Get("/favicon.ico");
  ASSERT_EQ(icon.status, 200);
  EXPECT_EQ(icon.Header("content-type"), "image/x-icon");
  ASSERT_GE(icon.body.size(), 22u);
  EXPECT_EQ(icon.body.substr(0, 4), std::string("\0\0\1\0", 4));  // an icon file, one image
  EXPECT_EQ(icon.body[4], 1);
}

TEST_F(SiteTest, AnErrorRepeatedOnEveryRequestIsLoggedOncePerMinute) {
  std::string cookie = SignIn();
  size_t before = ErrorLogLines();
  for (int i = 0; i < 20; ++i) {
    HttpReply r = client().Get("/admin/db_list.asp?page=abc", {cookie});
    EXPECT_EQ(r.status, 200);
  }
  size_t added = ErrorLogLines() - before;
  EXPECT_GE(added, 1u);
  EXPECT_LE(added, 2u);  // at most one line per distinct error of the page
}

}  // namespace
}  // namespace ostrakan::testing
