// Page files: how they are read (directives, statements, writes, syntax errors) and run
// against a page component.
#include "engine/page_file.h"
#include "engine/page_runner.h"
#include "frame/escape.h"

#include <gtest/gtest.h>

#include "admin/registry.h"
#include "frame/site_page.h"
#include "platform/object_factory.h"
#include "platform/text/codepage.h"
#include "support/test_database.h"

namespace ostrakan::engine {
namespace {

// A node as "<line><kind><text>", with "=<value kind><name or literal>" for assignments and
// writes; kinds by the letters below (G a Setting, S a Session value, V a server variable).
std::vector<std::string> Show(const PageFile& page) {
  std::vector<std::string> shown;
  for (const PageNode& n : page.nodes) {
    std::string s = std::to_string(n.line) + "TCAW"[static_cast<int>(n.kind)] + ToUtf8(n.text);
    if (n.kind == PageNode::Kind::Assign || n.kind == PageNode::Kind::Write)
      s += std::string("=") + "LPGRQFVS"[static_cast<int>(n.value.kind)] +
           ToUtf8(n.value.kind == PageValue::Kind::Literal ? CStr(n.value.literal) : n.value.name);
    shown.push_back(s);
  }
  return shown;
}

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
  // The line break after a directive or a code block is dropped; the one after a write is kept.
  EXPECT_EQ(Show(p), (std::vector<std::string>{"2CInitFunction1", "3T<html>", "3W=PWebSite_Title",
                                               "3T|", "3W=GAdmin_Session", "3T\n", "5Aid=Rid",
                                               "6ANote=La \"quoted\" : text", "6CInitFunction2",
                                               "7Apage=Qpage", "8Aword=Fw", "8Aaddr=VREMOTE_ADDR",
                                               "9An=L-12", "9Awho=Suser", "10T</html>"}));
}

TEST(PageFile, APlainPageIsItsTextAndAClosingMarkInAStringClosesNothing) {
  PageFile p = ParsePageFile(u"<p>100% sure</p>\n<%= Setting(\"WebSite_Title\") %>");
  EXPECT_TRUE(p.component.empty());
  EXPECT_EQ(Show(p), (std::vector<std::string>{"1T<p>100% sure</p>\n", "2W=GWebSite_Title"}));
  EXPECT_TRUE(ParsePageFile(u"").nodes.empty());
  EXPECT_EQ(Show(ParsePageFile(u"<%@ Component=\"C\" %><% Note = \"50%> done\" %>tail")),
            (std::vector<std::string>{"1ANote=L50%> done", "1Ttail"}));
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
  const std::u16string c = u"<%@ Component=\"C\" %>\n";
  EXPECT_EQ(ErrorOf(c + u"text\n<% InitFunction1").first, 3);  // no closing %>
  EXPECT_EQ(ErrorOf(c + u"\n<% x = \"open %>").first, 3);      // unterminated string
  EXPECT_EQ(ErrorOf(c + u"<%\nok\nDim x\n%>").first, 4);       // not a statement
  EXPECT_EQ(ErrorOf(c + u"<% x = Foo(\"a\") %>").second, "unknown function 'Foo'");
  for (const char16_t* bad :
       {u"<% x = Request(id) %>", u"<% x = Request.Bogus(\"a\") %>", u"<% x = 1 2 %>", u"<% x = %>",
        u"<%= %>", u"<% a.b = 1 %>", u"<% x = 99999999999 %>", u"<% x = 1 + 1 %>"})
    EXPECT_EQ(ErrorOf(c + bad).first, 2) << ToUtf8(bad);
  EXPECT_EQ(ErrorOf(c + u"\n<%@ Component=\"D\" %>").first, 3);  // a second component
  // Directives unknown, empty or unquoted; component statements without a Component directive.
  for (const char16_t* bad : {u"<%@ Language=\"VBScript\" %>", u"<%@ %>", u"<%@ Component=C %>",
                              u"<%= Title %>", u"<% x = 1 %>"})
    EXPECT_EQ(ErrorOf(bad).first, 1) << ToUtf8(bad);
  EXPECT_EQ(ErrorOf(u"a\n<% InitFunction1 %>").first, 2);
  EXPECT_EQ(ErrorOf(u"\n<%@ Rule=\"r.asp\" %>").second,
            "a Rule directive needs a Component directive");
  // A Rule names a file in the page's folder.
  for (const char16_t* bad : {u"../x.asp", u"sub/x.asp", u"a\\b", u"..", u""})
    EXPECT_EQ(ErrorOf(u"<%@ Component=\"C\" Rule=\"" + std::u16string(bad) + u"\" %>").first, 1)
        << ToUtf8(bad);
}

// A page component that records what the page file did to it.
class Recorder : public SitePage {
 public:
  static inline int alive = 0;
  Variant id, Note;

  Recorder() : SitePage(u"\\admin\\recorder") {
    ++alive;
    Describe<Recorder>([](Describer<Recorder>& m) {
      m.Property(u"id", &Recorder::id);
      m.Property(u"Note", &Recorder::Note);
      m.Block(u"Show", [](Recorder& page) {
        CurrentResponse().Write(u"[" + HtmlText(TextOf(page.id)) + u"]");
      });
      m.Block(u"Stop", [] { CurrentResponse().Write(u"stopped"), EndResponse(); });
      m.Method(u"Crash", [](Args&) -> Variant { throw std::runtime_error("boom"); });
      m.Method(u"Wide", WriteCount, 3);
    });
  }
  ~Recorder() override { --alive; }
  // Writes how many arguments it was given (up to its arity).
  static Variant WriteCount(Args& args) {
    CurrentResponse().Write(HtmlText(FromUtf8(std::to_string(args.size()))));
    return Variant();
  }
};

class PageRunnerTest : public ::testing::Test {
 protected:
  PageRunnerTest() {
    std::vector<Assignment> values;
    int n = 0;
    for (const auto& name : SitePage::SettingNames())
      values.push_back({name, u"s" + FromUtf8(std::to_string(++n)), n});
    setup_ = SiteSetup(values);
  }

  // Runs the page text; the response text, or "error at line N" for an escaped failure.
  std::u16string Run(std::u16string_view text, std::vector<Variant> rule = {}) {
    PageFile page = ParsePageFile(text);
    context_.response = std::make_shared<Response>();
    ScopedObjectContext scope(context_);
    try {
      RunPage({page, setup_, rule, context_, create_});
    } catch (const PageRunError& e) {
      EXPECT_EQ(Recorder::alive, 0);
      return u"error at line " + FromUtf8(std::to_string(e.line)) + u": " + FromUtf8(e.what());
    }
    EXPECT_EQ(Recorder::alive, 0) << "the component outlived the page";
    return context_.response->Text();
  }

  RequestContext context_{
      std::make_shared<Application>(),
      std::make_shared<Server>("/nonexistent", u"/admin/recorder.asp", ObjectFactory::Default()),
      std::make_shared<Session>(), std::make_shared<Request>(), std::make_shared<Response>()};
  SiteSetup setup_;
  ComponentCreator create_ = [](std::u16string_view progId) -> std::shared_ptr<Component> {
    if (!IEquals(progId, u"Test.Recorder")) return nullptr;
    return std::make_shared<Recorder>();
  };
};

TEST_F(PageRunnerTest, WritesTextSetsPropertiesAndCallsMethodsInOrderUntilTheResponseEnds) {
  context_.request->queryString.Add(u"id", u"42");
  context_.request->form.Add(u"note", u"from the form");
  EXPECT_EQ(
      Run(u"<%@ Component=\"Test.Recorder\" %><% InitFunction1 %>"
          u"<p><%= WebSite_Title %>/<%= Admin_Session %></p><% id = Request(\"id\") %><% Show %>"
          u"<% Note = Request.Form(\"NOTE\") %><%= Note %>|<%= Setting(\"I\") %>|<% Wide %>"
          u"|<% Stop %> after<% Show %>",
          {Variant(u"web"), Variant(u"http://x/")}),
      u"<p>s1/s8</p>[42]from the form|s11|3|stopped");
  context_.session->Set(u"user", Variant(u"ann"));
  EXPECT_EQ(Run(u"<b><%= Session(\"USER\") %></b><%= Setting(\"Missing\") %>"), u"<b>ann</b>");
}

TEST_F(PageRunnerTest, AnEscapedErrorNamesTheLineAndReleasesTheComponent) {
  EXPECT_EQ(Run(u"<%@ Component=\"Test.Recorder\" %>\n\n<% Crash %>"), u"error at line 3: boom");
  EXPECT_EQ(Run(u"<%@ Component=\"Test.Recorder\" %>\n<% NoSuchProperty = 1 %>").substr(0, 27),
            u"error at line 2: error 438:");
  EXPECT_EQ(Run(u"<%@ Component=\"Test.Recorder\" %><% NOTE = 1 %><% noSuchBlock %>").substr(0, 26),
            u"error at line 1: error 438");
  EXPECT_EQ(Run(u"<%@ Component=\"Test.Unknown\" %>x"),
            u"error at line 1: no page component is registered as Test.Unknown");
}

// Each class describes its members once; a name it lost (or gave the wrong component) would
// only show as error 438 on its page.
TEST(SitePageFiles, NameOnlyMembersTheirComponentsHave) {
  int pages = 0;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(testing::SourceDir() / "site")) {
    if (!entry.is_regular_file() || entry.path().extension() != ".asp") continue;
    const std::u16string text = text::Decode(testing::ReadFile(entry.path()), 936);
    if (!text.starts_with(u"<%@ Component=")) continue;  // templates, settings, plain pages
    const PageFile page = ParsePageFile(text);
    std::shared_ptr<Component> component = CreateComponent(page.component);
    ASSERT_TRUE(component) << entry.path();
    ++pages;
    for (const PageNode& n : page.nodes) {
      const bool found =
          n.kind == PageNode::Kind::Call     ? component->HasMethod(n.text)
          : n.kind == PageNode::Kind::Assign ? component->HasProperty(n.text)
          : n.kind == PageNode::Kind::Write && n.value.kind == PageValue::Kind::Property
              ? component->HasProperty(n.value.name)
              : true;
      EXPECT_TRUE(found) << entry.path() << " line " << n.line;
    }
  }
  EXPECT_GT(pages, 50);
}

}  // namespace
}  // namespace ostrakan::engine
