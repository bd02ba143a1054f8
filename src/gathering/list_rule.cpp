#include "gathering/list_rule.h"

#include "frame/filtration.h"
#include "platform/ado/recordset.h"

namespace ostrakan::gathering {

const std::array<ListRuleField, 20>& ListRuleFields() {
  using R = ListRule;
  static const std::array<ListRuleField, 20> fields = {{
      {u"web", u"Web", &R::web},
      {u"url", u"Url", &R::url},
      {u"gather_url", u"Gather_Url", &R::gather_url},
      {u"next_page", u"Next_Page", &R::next_page},
      {u"charset", u"Charset", &R::charset},
      {u"error_html", u"Error_Html", &R::error_html},
      {u"cyc_border", u"Cyc_Border", &R::cyc_border},
      {u"cyc_border_sn", u"Cyc_Border_SN", &R::cyc_border_sn},
      {u"image_start", u"Image_Start", &R::image_start},
      {u"image_end", u"Image_End", &R::image_end},
      {u"url_start", u"Url_Start", &R::url_start},
      {u"url_end", u"Url_End", &R::url_end},
      {u"url_filtration", u"Url_Filtration", &R::url_filtration},
      {u"v_url", u"V_Url", &R::v_url},
      {u"title_start", u"Title_Start", &R::title_start},
      {u"title_end", u"Title_End", &R::title_end},
      {u"title_filtration", u"Title_Filtration", &R::title_filtration},
      {u"content_start", u"Content_Start", &R::content_start},
      {u"content_end", u"Content_End", &R::content_end},
      {u"content_filtration", u"Content_Filtration", &R::content_filtration},
  }};
  return fields;
}

ListRule ListRuleFromValues(const std::vector<Variant>& values, size_t from) {
  ListRule rule;
  size_t i = from;
  for (const ListRuleField& f : ListRuleFields()) {
    if (i < values.size()) rule.*f.member = TextOf(values[i]);
    ++i;
  }
  return rule;
}

std::optional<ListRule> LoadListRule(ado::Connection& conn, long id) {
  auto rs =
      conn.Execute(u"select * from gather_list_web where id=?", {Variant(static_cast<double>(id))});
  if (rs->Eof()) {
    rs->Close();
    return std::nullopt;
  }
  ListRule rule;
  for (const ListRuleField& f : ListRuleFields())
    rule.*f.member = Filter(FilterKind::QuoteUndoubling, TextOf(rs->Field(f.column)));
  rs->Close();
  return rule;
}

}  // namespace ostrakan::gathering
