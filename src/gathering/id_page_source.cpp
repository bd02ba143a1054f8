#include "gathering/id_page_source.h"

#include "gathering/page_fetch.h"
#include "gathering/record_store.h"

namespace ostrakan::gathering {

std::u16string FactoryPages::Fetch(std::u16string_view url, std::u16string_view charset) {
  FetchedPage page = FetchPage(factory_, url, charset);
  why_ = std::move(page.why);
  return std::move(page.text).value_or(u"");
}

void SaveIdRecord(ado::Connection& conn, const IdRecord& record) {
  StoreRecord(conn, GatheredRecord{record.title, record.content, record.url, u""},
              SourceSite{record.source, record.source_url});
}

}  // namespace ostrakan::gathering
