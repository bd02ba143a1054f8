#include "admin/list_gathering_page.h"

#include "frame/data_access.h"
#include "frame/page_blocks.h"
#include "frame/page_parts.h"
#include "gathering/page_fetch.h"
#include "platform/text/bytes_to_bstr.h"

namespace ostrakan::admin {

ListGatheringPage::ListGatheringPage(std::u16string context) : SitePage(std::move(context)) {
  const auto& fields = gathering::ListRuleFields();
  for (size_t i = 0; i < fields.size(); ++i)
    Property(i == 0 ? u"web" : fields[i].fileName, ruleValues[i]);
  for (auto [name, member] : {std::pair{u"Keyword", &Keyword},
                              {u"Page_Start", &Page_Start},
                              {u"Page_End", &Page_End},
                              {u"G_Url", &G_Url},
                              {u"Html", &Html},
                              {u"Word", &Word}})
    Property(name, *member);
  // InitFunction1 takes the 13 settings and the 20 rule fields.
  Method(
      u"InitFunction1",
      [this](Args& args) {
        InitFunction1(args);
        return Variant();
      },
      kSettingCount + 20);
  UseFiltration(FilterKind::GatheredText);
  Method(
      u"DefinedFiltration",
      [this](Args& a) {
        return GuardValue(u"DefinedFiltration", [&] {
          return Variant(gathering::DefinedFiltration(TextOf(a.at(0)), TextOf(a.at(1))));
        });
      },
      2);
  Method(
      u"GetHTTPPage", [this](Args& a) { return GetHTTPPage(a.at(0)); }, 1);
  Method(
      u"BytesToBstr", [this](Args& a) { return BytesToBstr(a.at(0), a.at(1)); }, 2);
  Method(
      u"GBToUTF8", [this](Args& a) { return GBToUTF8(a.at(0)); }, 1);
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
