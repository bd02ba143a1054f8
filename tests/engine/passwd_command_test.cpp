// ostrakan passwd: the way back in when nobody can sign in.
#include <gtest/gtest.h>

#include <sstream>

#include "access/md5.h"
#include "core/variant.h"
#include "engine/commands.h"
#include "support/page_harness.h"

namespace ostrakan::engine {
namespace {

using testing::SqlValue;

class Passwd : public ::testing::Test {
 protected:
  void SetUp() override {
    InitOptions init{site_, testing::SourceDir() / "site", "admin", "secret123"};
    std::ostringstream out, err;
    ASSERT_EQ(RunInit(init, out, err), 0) << err.str();
  }
  static PasswdOptions Options(std::string admin, std::optional<std::string> password,
                               bool json = false) {
    PasswdOptions o;
    o.admin = std::move(admin);
    o.password = std::move(password);
    o.json = json;
    return o;
  }
  int Run(PasswdOptions o) {
    out_.str("");
    err_.str("");
    o.site = site_;
    return RunPasswd(o, out_, err_);
  }
  static std::string Digest(const std::string& password) { return ToUtf8(Md5(FromUtf8(password))); }
  std::string PasswordOf(const std::string& name) {
    return SqlValue(db_, "select password from admin where username='" + name + "'");
  }
  testing::TempDir dir_;
  std::filesystem::path site_ = dir_.path() / "site";
  std::filesystem::path db_ = site_ / "data/ostrakan.db";
  std::ostringstream out_, err_;
};

TEST_F(Passwd, AddsTheAccountWhenItsNameWasLostAndResetsItLater) {
  // The account page stored an empty name: nobody can sign in.
  testing::Sql(db_, "update admin set username=''");
  ASSERT_EQ(Run(Options("admin", "fresh123")), 0) << err_.str();
  EXPECT_EQ(out_.str(), "Added the administrator admin\n");
  EXPECT_EQ(PasswordOf("admin"), Digest("fresh123"));

  ASSERT_EQ(Run(Options("admin", std::nullopt, true)), 0) << err_.str();
  std::string text = out_.str();
  size_t at = text.find("Password: ");
  ASSERT_NE(at, std::string::npos) << text;
  std::string generated = text.substr(at + 10, 12);
  EXPECT_EQ(PasswordOf("admin"), Digest(generated));
  EXPECT_EQ(SqlValue(db_, "select count(*) from admin where username='admin'"), "1");
  std::string last = text.substr(text.rfind('\n', text.size() - 2) + 1);
  EXPECT_EQ(last, "{\"admin\":\"admin\",\"added\":false,\"password\":\"" + generated + "\"}\n");
}

TEST_F(Passwd, RefusesWhatSignInCouldNotTypeAndChangesNothing) {
  std::string before = PasswordOf("admin");
  EXPECT_EQ(Run(Options("", "fresh123")), 1);
  EXPECT_EQ(err_.str(), "ostrakan passwd: the administrator name is empty.\n");
  EXPECT_EQ(Run(Options("admin", "it's")), 1);
  std::string err = err_.str();
  EXPECT_NE(err.find("the password may not contain"), std::string::npos);
  EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1);
  EXPECT_EQ(PasswordOf("admin"), before);

  PasswdOptions elsewhere = Options("admin", "fresh123");
  elsewhere.site = dir_.path() / "nothing";
  std::ostringstream out, errors;
  EXPECT_EQ(RunPasswd(elsewhere, out, errors), 1);
  EXPECT_NE(errors.str().find("not a site folder"), std::string::npos);
}

}  // namespace
}  // namespace ostrakan::engine
