#include "admin/category_blocks.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "frame/request_context.h"

namespace ostrakan::admin {

std::vector<Variant> RequestValues(std::u16string_view name) {
  const Request& request = CurrentRequest();
  const KeyedValues& from = request.queryString.Has(name) ? request.queryString : request.form;
  std::vector<Variant> values;
  for (std::u16string& v : from.All(name)) values.emplace_back(std::move(v));
  return values;
}

std::u16string SortListAddress(const Variant& sort, const Variant& sortId) {
  return u"sort_list.asp?sort=" + UrlQuery(TextOf(sort)).text() + u"&sort_id=" +
         UrlQuery(TextOf(sortId)).text();
}

void TypeMismatch() {
  throw ScriptError(13, u"Type mismatch");
}

}  // namespace ostrakan::admin
