// The rule test pop-ups against the fixture remote site: what each page or ID gave (entries
// matched, no results, nothing the rule knows) and why a page could not be fetched.
#include "support/admin_pages.h"
#include "support/list_rule_fixture.h"
#include "support/remote_site.h"

namespace ostrakan {
namespace {

using namespace testing;

// A rule's fields as the rule file hands them on, from one text with '|' between them.
std::vector<std::u16string> Fields(const std::u16string& text) {
  std::vector<std::u16string> fields;
  for (size_t at = 0, bar = 0; bar != std::u16string::npos; at = bar + 1)
    fields.push_back(text.substr(at, (bar = text.find(u'|', at)) - at));
  return fields;
}

class RuleTrialPages : public AdminPages {
 protected:
  ~RuleTrialPages() override { http::SetDefaultFetcher(nullptr); }
  RemoteSite remote;
};

TEST_F(RuleTrialPages, TheListTestSaysWhatEachPageMatchedAndWhyAFetchFailed) {
  remote.Set("/r/1.html", {200, FixtureResultPage(1, 3)});
  remote.Set("/r/2.html", {200, "<div class=\"none\">nothing</div>"});
  remote.Set("/r/3.html", {404, "gone"});
  remote.Set("/r/4.html", {200, "<html>a new look</html>"});
  remote.Set("/r/5.html", {200, std::string(5000, 'x')});
  http::FetchLimits small;
  small.maxBodyBytes = 2000;
  http::SetDefaultFetcher(http::MakeCurlFetcher(small));
  const std::vector<std::u16string> rule = Fields(
      u"样站|http://remote.test/|" + FromUtf8(remote.Url("/r/[page].html?q=[keyword]")) +
      u"|1|utf-8|<div class=\"none\">|<li class=\"v\">|1|<img src=\"http://|\" alt|<a href=\"|"
      u"\" title||http://remote.test/|title=\"x\">|</a>||<p>|</p>| text");

  PageRun run =
      Run(u"Ostrakan.Class37", 6,
          {{u"id", u"3"}, {u"keyword", u"功夫"}, {u"Page_Start", u"1"}, {u"Page_End", u"5"}}, {},
          {}, rule);
  ASSERT_TRUE(run.completed);
  const std::u16string at = FromUtf8(remote.Url("/r/"));
  for (const std::u16string& said : std::vector<std::u16string>{
           u"video 影片 1-3<br>about 1-3<br>http://remote.test/v/1-3.html<br><br>找不到相关数据",
           u"第 1 页：匹配 3 条　" + at + u"1.html?q=%E5%8A%9F%E5%A4%AB<br>",
           u"第 2 页：找不到相关数据　",
           u"第 3 页：<span class=\"warn\">未能取得页面（远程网站回答状态 404）</span>",
           u"第 4 页：<span class=\"warn\">没有匹配的条目（页面的标记可能已改变）</span>",
           u"第 5 页：<span class=\"warn\">未能取得页面（页面超过大小限制）</span>",
           u"共匹配 3 条。</p>", u"name=\"keyword\" class=\"input\" value=\"功夫\"",
           u"name=\"Page_End\" class=\"input short\" value=\"5\"", u"name=\"id\" value=\"3\""})
    EXPECT_TRUE(Holds(run.text, said));
}

TEST_F(RuleTrialPages, TheIdTestSaysWhatEachIdGaveAndARefusedRedirect) {
  RemoteSite inside;
  remote.Set("/id/1.html", {200, "<html><h1>Film 影片 1</h1></html>"});
  remote.Set("/id/2.html", {200, "<div class=\"none\">no such video</div>"});
  remote.Set("/id/3.html", {404, "gone"});
  remote.Set("/id/4.html", {200, "<html><h2>moved</h2></html>"});
  remote.Set("/id/5.html", {302, "", {"Location: " + inside.Url("/secret")}});
  http::SetDefaultFetcher(remote.FetcherCallingThisSitePublic());
  const std::vector<std::u16string> rule =
      Fields(u"编号站|http://ids.test/|" + FromUtf8(remote.Url("/id/[id].html")) +
             u"|utf-8|<div class=\"none\">|<h1>|</h1>||");

  const PageRun run = Run(
      u"Ostrakan.Class43", 4,
      {{u"id", u"7"}, {u"Action", u"ok"}, {u"ID_Start", u"1"}, {u"ID_End", u"5"}}, {}, {}, rule);
  ASSERT_TRUE(run.completed);
  const std::u16string at = FromUtf8(remote.Url("/id/"));
  for (const std::u16string& said : std::vector<std::u16string>{
           u"编号 1：找到标题　" + at + u"1.html<br>", u"编号 2：找不到相关数据",
           u"编号 3：<span class=\"warn\">未能取得页面（远程网站回答状态 404）</span>",
           u"编号 4：<span class=\"warn\">没有找到标题（页面的标记可能已改变）</span>",
           u"编号 5：<span class=\"warn\">未能取得页面（拒绝了从公网地址到内网地址的跳转）</span>",
           u"共 1 个编号找到标题。</p>"})
    EXPECT_TRUE(Holds(run.text, said));
  EXPECT_TRUE(inside.Requests().empty());
}

}  // namespace
}  // namespace ostrakan
