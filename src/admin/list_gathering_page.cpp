#include "admin/list_gathering_page.h"

#include "frame/data_access.h"
#include "frame/page_blocks.h"
#include "frame/page_parts.h"
#include "gathering/page_fetch.h"
#include "platform/text/bytes_to_bstr.h"

namespace ostrakan::admin {

ListGatheringPage::ListGatheringPage(std::u16string context) : SitePage(std::move(context)) {
  // SitePage's InitFunction1 hands the rule fields after the 13 settings to AssignExtra.
  Describe<ListGatheringPage>([](Describer<ListGatheringPage>& m) {
    const auto& fields = gathering::ListRuleFields();
    for (size_t i = 0; i < fields.size(); ++i)
      m.Property(i == 0 ? u"web" : fields[i].fileName,
                 [i](ListGatheringPage& page) -> Variant& { return page.ruleValues[i]; });
    for (auto [name, member] : {std::pair{u"Keyword", &ListGatheringPage::Keyword},
                                {u"Page_Start", &ListGatheringPage::Page_Start},
                                {u"Page_End", &ListGatheringPage::Page_End},
                                {u"G_Url", &ListGatheringPage::G_Url},
                                {u"Html", &ListGatheringPage::Html},
                                {u"Word", &ListGatheringPage::Word}})
      m.Property(name, member);
    m.Filtration(FilterKind::GatheredText);
    m.Method(
        u"DefinedFiltration",
        [](ListGatheringPage& page, Args& a) {
          return page.GuardValue(u"DefinedFiltration", [&] {
            return Variant(gathering::DefinedFiltration(TextOf(a.at(0)), TextOf(a.at(1))));
          });
        },
        2);
    m.Method(
        u"GetHTTPPage", [](ListGatheringPage& page, Args& a) { return page.GetHTTPPage(a.at(0)); },
        1);
    m.Method(
        u"BytesToBstr",
        [](ListGatheringPage& page, Args& a) { return page.BytesToBstr(a.at(0), a.at(1)); }, 2);
    m.Method(
        u"GBToUTF8", [](ListGatheringPage& page, Args& a) { return page.GBToUTF8(a.at(0)); }, 1);
  });
}

void ListGatheringPage::AssignExtra(Args& parameters, size_t from) {
  for (size_t i = 0; i < ruleValues.size(); ++i) {
    const size_t at = from + i;
    ruleValues[i] = at < parameters.size() ? parameters[at] : Variant();
    ruleGiven_ = ruleGiven_ || !ruleValues[i].IsEmpty();
  }
}

gathering::ListRule ListGatheringPage::Rule() const {
  std::vector<Variant> values(ruleValues.begin(), ruleValues.end());
  return gathering::ListRuleFromValues(values, 0);
}

Variant ListGatheringPage::GetHTTPPage(const Variant& address) {
  return GuardValue(u"GetHTTPPage", [&] {
    return Variant(
        gathering::GetHttpPage(CurrentServer().factory(), TextOf(address), TextOf(ruleValues[4])));
  });
}

Variant ListGatheringPage::BytesToBstr(const Variant& body, const Variant& charset) {
  return GuardValue(u"BytesToBstr", [&] {
    if (body.type() != VarType::Bytes) return Variant(u"");
    const Bytes& b = body.bytes();
    return Variant(text::BytesToBstr(
        std::string_view(reinterpret_cast<const char*>(b.data()), b.size()), TextOf(charset)));
  });
}

Variant ListGatheringPage::GBToUTF8(const Variant& text) {
  return GuardValue(u"GBToUTF8", [&] {
    CurrentResponse().SetCodePage(65001);
    return text;
  });
}

void ListGatheringPage::RequireRule(const Variant& id, const std::function<void()>& before) {
  if (!IsValidId(id)) {
    if (before) before();
    WriteAndEnd(u"非法ID参数");
  }
  if (!ruleGiven_) {
    if (before) before();
    WriteAndEnd(AlertAndGoBack(u"该记录不存在或错误！"));
  }
}

void ListGatheringPage::ReadRunInputs() {
  CurrentServer().ScriptTimeout = 9999999;
  Request& request = CurrentRequest();
  auto read = [&](std::u16string_view key, std::u16string_view otherwise) {
    Variant v = request.QueryString(key);
    return TextOf(v).empty() ? Variant(otherwise) : v;
  };
  Keyword = read(u"keyword", gathering::kSampleKeyword);
  Page_Start = read(u"Page_Start", u"1");
  Page_End = read(u"Page_End", u"1");
  gathering::ListRule rule = Rule();
  if (IEquals(rule.charset, u"utf-8")) {
    GBToUTF8(Keyword);
    Word = gathering::EncodeKeyword(rule, TextOf(Keyword));
  } else {
    Word = Keyword;
  }
  // Back to the pages' code page; the response follows it, so that the whole page is one
  // encoding (nothing has been written while 65001 was in force).
  CurrentSession().SetCodePage(936);
  CurrentResponse().SetCodePage(936);
}

}  // namespace ostrakan::admin
