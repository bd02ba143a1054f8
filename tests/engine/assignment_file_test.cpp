#include "engine/assignment_file.h"

#include <gtest/gtest.h>

#include "engine/site_setup.h"
#include "platform/text/codepage.h"

namespace ostrakan::engine {
namespace {

TEST(ParseAssignments, ReadsQuotedAndBareValuesAndSkipsCommentsAndDelimiters) {
  auto a = ParseAssignments(
      u"<%\r\n"
      u"' a comment line\r\n"
      u"\r\n"
      u"  Title = \"She said \"\"hi\"\" \"   ' trailing comment\r\n"
      u"Empty=\"\"\n"
      u"Count=20\r"
      u"Path=\"a'b\"\n"
      u"%>");
  ASSERT_EQ(a.size(), 4u);
  EXPECT_EQ(a[0].name, u"Title");
  EXPECT_EQ(a[0].value, u"She said \"hi\" ");
  EXPECT_EQ(a[0].line, 4);
  EXPECT_EQ(a[1].value, u"");
  EXPECT_EQ(a[2].value, u"20");
  EXPECT_EQ(a[2].line, 6);
  EXPECT_EQ(a[3].value, u"a'b");  // a quote inside the literal is not a comment
}

TEST(ParseAssignments, JoinsLiteralsAndLineBreaks) {
  auto values = ParseAssignments(u"A=\"x\"\"y\" & vbCrLf & \"z\" & VBLF & vbCr ' note");
  ASSERT_EQ(values.size(), 1u);
  EXPECT_EQ(values[0].value, u"x\"y\r\nz\n\r");
}

TEST(ParseAssignments, NamesTheLineOfAMalformedLine) {
  auto lineOf = [](std::u16string_view text) {
    try {
      ParseAssignments(text);
    } catch (const AssignmentSyntaxError& e) {
      return e.line;
    }
    return 0;
  };
  EXPECT_EQ(lineOf(u"A=\"1\"\nB=\"unterminated\n"), 2);
  EXPECT_EQ(lineOf(u"A=\"1\" junk"), 1);
  EXPECT_EQ(lineOf(u"\n\nDim x"), 3);
  EXPECT_EQ(lineOf(u"A="), 1);
  EXPECT_EQ(lineOf(u"A=\"1\" & Chr(34)"), 1);
  EXPECT_EQ(lineOf(u"A=\"1\" &"), 1);
  EXPECT_EQ(lineOf(u"A=\"ok\"\r\n' fine\r\nB=\"ok\""), 0);
}

constexpr char16_t kRules[] =
    u"<%\n"
    u"Select Case id\n"
    u"Case 3\n"
    u"web=\"站点\"\n"
    u"Url=\"http://a.example/\"\n"
    u"  Dim ignored\n"
    u"Case 4, 7\n"
    u"web=\"four\"\n"
    u"Case Else\n"
    u"web=\"other\"\n"
    u"End Select\n"
    u"after=\"not in an arm\"\n"
    u"%>\n";

TEST(ParseCaseArms, GroupsAssignmentsByArm) {
  auto arms = ParseCaseArms(kRules);
  ASSERT_EQ(arms.size(), 3u);
  EXPECT_EQ(arms[0].label, u"3");
  ASSERT_EQ(arms[0].values.size(), 2u);
  EXPECT_EQ(arms[0].values[0].value, u"站点");
  EXPECT_EQ(arms[0].values[1].name, u"Url");
  EXPECT_EQ(arms[1].values.size(), 1u);
  EXPECT_EQ(arms[2].values.size(), 1u);  // the line after End Select belongs to no arm
}

TEST(ParseCaseArms, FindsTheArmForAnIdAndFallsBackToCaseElse) {
  auto arms = ParseCaseArms(kRules);
  EXPECT_EQ(FindCaseArm(arms, u"3"), &arms[0]);
  EXPECT_EQ(FindCaseArm(arms, u" 03 "), &arms[0]);
  EXPECT_EQ(FindCaseArm(arms, u"7"), &arms[1]);
  EXPECT_EQ(FindCaseArm(arms, u"5"), &arms[2]);
  EXPECT_EQ(FindCaseArm(arms, u""), &arms[2]);
  auto noElse = ParseCaseArms(u"Case 1\nx=\"1\"\nEnd Select");
  EXPECT_EQ(FindCaseArm(noElse, u"2"), nullptr);
  EXPECT_EQ(FindCaseArm(noElse, u"1x"), nullptr);
  EXPECT_TRUE(ParseCaseArms(u"").empty());
}

TEST(ParseCaseArms, RejectsAMalformedAssignmentInsideAnArm) {
  try {
    ParseCaseArms(u"Select Case id\nCase 1\nweb=\"broken\nEnd Select");
    FAIL() << "no error";
  } catch (const AssignmentSyntaxError& e) {
    EXPECT_EQ(e.line, 3);
  }
}

TEST(SiteSetup, ReadsSetupAspInTheAnsiCodePage) {
  std::string bytes = text::Encode(
      u"<%\r\nWebSite_Title=\"视频\"\r\nDB=\"data\\site.db\"\r\nAdmin_Session=\"Adm\"\r\n"
      u"Admin_Session=\"Later\"\r\nExtra=\"x\"\r\n%>\r\n",
      936);
  SiteSetup setup = SiteSetup::FromBytes(bytes);
  EXPECT_EQ(setup.Get(u"website_title").str(), u"视频");
  EXPECT_EQ(setup.AdminSessionName(), u"Later");  // the last assignment wins
  EXPECT_EQ(setup.Get(u"Extra").str(), u"x");
  EXPECT_EQ(setup.DatabasePath("/srv/site"), std::filesystem::path("/srv/site/data/site.db"));

  auto settings = setup.Settings();
  ASSERT_EQ(settings.size(), 13u);
  EXPECT_EQ(settings[0].str(), u"视频");
  EXPECT_EQ(settings[2].str(), u"data\\site.db");
  EXPECT_EQ(settings[7].str(), u"Later");
  EXPECT_TRUE(settings[1].IsEmpty());
  auto missing = setup.MissingSettings();
  EXPECT_EQ(missing.size(), 10u);
  EXPECT_EQ(missing.front(), u"Web_Path");
}

TEST(SiteSetup, ReportsTheLineOfAnError) {
  try {
    SiteSetup::FromBytes("A=\"1\"\r\nB=oops oops\r\n");
    FAIL() << "no error";
  } catch (const SiteSetupError& e) {
    EXPECT_NE(std::string(e.what()).find("Setup.asp, line 2"), std::string::npos) << e.what();
  }
}

}  // namespace
}  // namespace ostrakan::engine
