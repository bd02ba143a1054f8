// What a browser asks of every site besides its pages. (How often a repeated error is logged is
// the error log's own test.)
#include "http/site_fixture.h"

namespace ostrakan::testing {
namespace {

TEST_F(SiteTest, TheSiteHasAnIcon) {
  HttpReply icon = client().Get("/favicon.ico");
  ASSERT_EQ(icon.status, 200);
  EXPECT_EQ(icon.Header("content-type"), "image/x-icon");
  ASSERT_GE(icon.body.size(), 22u);
  EXPECT_EQ(icon.body.substr(0, 4), std::string("\0\0\1\0", 4));  // an icon file, one image
  EXPECT_EQ(icon.body[4], 1);
}

}  // namespace
}  // namespace ostrakan::testing
