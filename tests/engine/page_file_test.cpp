#include "engine/page_file.h"

#include <gtest/gtest.h>

namespace ostrakan::engine {
namespace {

using K = PageNode::Kind;
using V = PageValue::Kind;

TEST(PageFile, ReadsDirectivesStatementsAndWrites) {
  PageFile p = ParsePageFile(
      u"<%@ Component=\"Ostrakan.Class54\" Rule=\"gather_list_web_list.asp\" %>\n"
      u"<% InitFunction1 %>\r\n"
      u"<html><%= WebSite_Title %>|<%= Setting(\"Admin_Session\") %>\n"
      u"<%\n"
      u"  id = Request(\"id\")   ' the record\n"
      u"  Note = \"a \"\"quoted\"\" : text\" : Call InitFunction2()\n"
      u"  page = Request.QueryString(\"page\")\n"
      u"  word = Request.Form(\"w\") : addr = Request.ServerVariables(\"REMOTE_ADDR\")\n"
      u"  n = -12 : who = Session(\"user\")\n"
      u"%></html>");
  EXPECT_EQ(p.component, u"Ostrakan.Class54");
  EXPECT_EQ(p.rule, u"gather_list_web_list.asp");
  ASSERT_EQ(p.nodes.size(), 15u);

  EXPECT_EQ(p.nodes[0].kind, K::Call);  // the line break after the directive is dropped
  EXPECT_EQ(p.nodes[0].text, u"InitFunction1");
  EXPECT_EQ(p.nodes[0].line, 2);
  EXPECT_EQ(p.nodes[1].kind, K::Text);
  EXPECT_EQ(p.nodes[1].text, u"<html>");  // and so is the one after a code block
  EXPECT_EQ(p.nodes[2].kind, K::Write);
  EXPECT_EQ(p.nodes[2].value.kind, V::Property);
  EXPECT_EQ(p.nodes[3].text, u"|");
  EXPECT_EQ(p.nodes[4].value.kind, V::Setting);
  EXPECT_EQ(p.nodes[4].value.name, u"Admin_Session");
  EXPECT_EQ(p.nodes[5].text, u"\n");  // a write keeps the line break after it

  EXPECT_EQ(p.nodes[6].kind, K::Assign);
  EXPECT_EQ(p.nodes[6].text, u"id");
  EXPECT_EQ(p.nodes[6].value.kind, V::Request);
  EXPECT_EQ(p.nodes[6].line, 5);
  EXPECT_EQ(p.nodes[7].value.literal.str(), u"a \"quoted\" : text");
  EXPECT_EQ(p.nodes[8].kind, K::Call);
  EXPECT_EQ(p.nodes[8].text, u"InitFunction2");
  EXPECT_EQ(p.nodes[8].line, 6);
  EXPECT_EQ(p.nodes[9].value.kind, V::QueryString);
  EXPECT_EQ(p.nodes[10].value.kind, V::Form);
  EXPECT_EQ(p.nodes[11].value.kind, V::ServerVariable);
  EXPECT_EQ(CLng(p.nodes[12].value.literal), -12);
  EXPECT_EQ(p.nodes[13].value.kind, V::Session);
  EXPECT_EQ(p.nodes[13].line, 9);
  EXPECT_EQ(p.nodes[14].text, u"</html>");
}

TEST(PageFile, APlainPageIsItsText) {
  PageFile p = ParsePageFile(u"<p>100% sure</p>\n<%= Setting(\"WebSite_Title\") %>");
  EXPECT_TRUE(p.component.empty());
  ASSERT_EQ(p.nodes.size(), 2u);
  EXPECT_EQ(p.nodes[0].text, u"<p>100% sure</p>\n");
  EXPECT_TRUE(ParsePageFile(u"").nodes.empty());
}

TEST(PageFile, AClosingMarkInsideAStringDoesNotCloseTheBlock) {
  PageFile p = ParsePageFile(u"<%@ Component=\"C\" %><% Note = \"50%> done\" %>tail");
  ASSERT_EQ(p.nodes.size(), 2u);
  EXPECT_EQ(p.nodes[0].value.literal.str(), u"50%> done");
  EXPECT_EQ(p.nodes[1].text, u"tail");
}

// The line and message of the syntax error in `text`.
std::pair<int, std::string> ErrorOf(std::u16string_view text) {
  try {
    ParsePageFile(text);
  } catch (const PageSyntaxError& e) {
    return {e.line, e.message};
  }
  return {0, "no error"};
}

TEST(PageFile, SyntaxErrorsNameTheirLine) {
  const char16_t* c = u"<%@ Component=\"C\" %>\n";
  auto with = [&](std::u16string rest) { return ErrorOf(c + rest); };
  EXPECT_EQ(with(u"text\n<% InitFunction1").first, 3);  // no closing %>
  EXPECT_EQ(with(u"\n<% x = \"open %>").first, 3);      // unterminated string
  EXPECT_EQ(with(u"<%\nok\nDim x\n%>").first, 4);       // not a statement
  EXPECT_EQ(with(u"<% x = Foo(\"a\") %>").second, "unknown function 'Foo'");
  EXPECT_EQ(with(u"<% x = Request(id) %>").first, 2);  // the name must be quoted
  EXPECT_EQ(with(u"<% x = Request.Bogus(\"a\") %>").first, 2);
  EXPECT_EQ(with(u"<% x = 1 2 %>").first, 2);
  EXPECT_EQ(with(u"<% x = %>").first, 2);
  EXPECT_EQ(with(u"<%= %>").first, 2);
  EXPECT_EQ(with(u"<% a.b = 1 %>").first, 2);
  EXPECT_EQ(with(u"<% x = 99999999999 %>").first, 2);
  EXPECT_EQ(with(u"<% x = 1 + 1 %>").first, 2);
  EXPECT_EQ(with(u"\n\n<%@ Component=\"D\" %>").first, 4);  // a second component
  EXPECT_EQ(ErrorOf(u"<%@ Language=\"VBScript\" %>").second,
            "unknown directive 'Language' (expected Component or Rule)");
  EXPECT_EQ(ErrorOf(u"<%@ %>").second, "empty directive");
  EXPECT_EQ(ErrorOf(u"<%@ Component=C %>").first, 1);
}

TEST(PageFile, ComponentStatementsNeedAComponentDirective) {
  EXPECT_EQ(ErrorOf(u"a\n<% InitFunction1 %>"),
            std::make_pair(2, std::string("'InitFunction1' needs a Component directive")));
  EXPECT_EQ(ErrorOf(u"<%= Title %>").second, "'Title' needs a Component directive");
  EXPECT_EQ(ErrorOf(u"<% x = 1 %>").first, 1);
  EXPECT_EQ(ErrorOf(u"\n<%@ Rule=\"r.asp\" %>").second,
            "a Rule directive needs a Component directive");
}

TEST(PageFile, ARuleNamesAFileInThePagesFolder) {
  for (const char16_t* bad : {u"../x.asp", u"sub/x.asp", u"a\\b", u"..", u""}) {
    std::u16string page = u"<%@ Component=\"C\" Rule=\"" + std::u16string(bad) + u"\" %>";
    EXPECT_EQ(ErrorOf(page).second, "Rule names a file in the page's folder") << ToUtf8(bad);
  }
}

}  // namespace
}  // namespace ostrakan::engine
