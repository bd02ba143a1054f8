#include "engine/assignment_file.h"

#include <gtest/gtest.h>

#include "engine/site_setup.h"
#include "platform/text/codepage.h"

namespace ostrakan::engine {
namespace {

TEST(ParseAssignments, ReadsLiteralsJoinedOrBareAndSkipsCommentsAndDelimiters) {
  auto a = ParseAssignments(
      u"<%\r\n' a comment line\r\n\r\n"
      u"  Title = \"She said \"\"hi\"\" \"   ' trailing comment\r\n"
      u"Count=20\r"
      u"Path=\"a'b\"\n"
      u"A=\"x\" & vbCrLf & \"z\" & VBLF & vbCr ' note\n%>");
  std::u16string read;
  for (const Assignment& one : a)
    read += FromUtf8(std::to_string(one.line)) + u" " + one.name + u"=" + one.value + u"|";
  // A quote inside the literal is not a comment.
  EXPECT_EQ(read, u"4 Title=She said \"hi\" |5 Count=20|6 Path=a'b|7 A=x\r\nz\n\r|");
}

TEST(ParseAssignments, NamesTheLineOfAMalformedLine) {
  auto lineOf = [](std::u16string_view text, bool arms = false) {
    try {
      arms ? (void)ParseCaseArms(text) : (void)ParseAssignments(text);
    } catch (const AssignmentSyntaxError& e) {
      return e.line;
    }
    return 0;
  };
  EXPECT_EQ(lineOf(u"A=\"1\"\nB=\"unterminated\n"), 2);
  EXPECT_EQ(lineOf(u"\n\nDim x"), 3);
  for (const char16_t* bad : {u"A=\"1\" junk", u"A=", u"A=\"1\" & Chr(34)", u"A=\"1\" &"})
    EXPECT_EQ(lineOf(bad), 1) << ToUtf8(bad);
  EXPECT_EQ(lineOf(u"Select Case id\nCase 1\nweb=\"broken\nEnd Select", true), 3);
}

TEST(ParseCaseArms, GroupsAssignmentsByArmAndFindsTheArmOfAnId) {
  auto arms = ParseCaseArms(
      u"<%\nSelect Case id\nCase 3\nweb=\"站点\"\nUrl=\"http://a.example/\"\n  Dim ignored\n"
      u"Case 4, 7\nweb=\"four\"\nCase Else\nweb=\"other\"\nEnd Select\nafter=\"no arm\"\n%>\n");
  ASSERT_EQ(arms.size(), 3u);
  ASSERT_EQ(arms[0].values.size(), 2u);
  EXPECT_EQ(arms[0].values[0].value, u"站点");
  EXPECT_EQ(arms[0].values[1].name, u"Url");
  EXPECT_EQ(arms[2].values.size(), 1u);  // the line after End Select belongs to no arm
  EXPECT_EQ(FindCaseArm(arms, u" 03 "), &arms[0]);
  EXPECT_EQ(FindCaseArm(arms, u"7"), &arms[1]);
  EXPECT_EQ(FindCaseArm(arms, u"5"), &arms[2]);
  EXPECT_EQ(FindCaseArm(arms, u""), &arms[2]);
  auto noElse = ParseCaseArms(u"Case 1\nx=\"1\"\nEnd Select");
  EXPECT_EQ(FindCaseArm(noElse, u"2"), nullptr);
  EXPECT_EQ(FindCaseArm(noElse, u"1x"), nullptr);
}

TEST(SiteSetup, ReadsSetupAspInTheAnsiCodePageAndTheLastAssignmentWins) {
  SiteSetup setup = SiteSetup::FromBytes(text::Encode(
      u"WebSite_Title=\"视频\"\r\nDB=\"data\\site.db\"\r\nDB=\"data\\b.db\"\r\n", 936));
  EXPECT_EQ(setup.Get(u"website_title").str(), u"视频");
  EXPECT_EQ(setup.DatabasePath("/srv/site"), std::filesystem::path("/srv/site/data/b.db"));
  EXPECT_EQ(setup.MissingSettings().front(), u"Web_Path");
}

}  // namespace
}  // namespace ostrakan::engine
