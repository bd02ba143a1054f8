#include "engine/page_runner.h"
#include "frame/escape.h"

#include <gtest/gtest.h>

#include "frame/site_page.h"
#include "platform/object_factory.h"

namespace ostrakan::engine {
namespace {

// A page component that records what the page file did to it.
class Recorder : public SitePage {
 public:
  static inline int alive = 0;
  Variant id, Note;

  Recorder() : SitePage(u"\\admin\\recorder") {
    ++alive;
    Property(u"id", id);
    Property(u"Note", Note);
    Block(u"Show", [this] { CurrentResponse().Write(u"[" + HtmlText(TextOf(id)) + u"]"); });
    Block(u"Stop", [] { CurrentResponse().Write(u"stopped"), EndResponse(); });
    Method(u"Crash", [](Args&) -> Variant { throw std::runtime_error("boom"); });
    Method(u"Wide", WriteCount, 3);
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
  EXPECT_EQ(Run(u"<%@ Component=\"Test.Unknown\" %>x"),
            u"error at line 1: no page component is registered as Test.Unknown");
}

}  // namespace
}  // namespace ostrakan::engine
