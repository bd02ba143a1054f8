#include "gathering/record_store.h"

#include "frame/filtration.h"
#include "gathering/bound_sql.h"

namespace ostrakan::gathering {
namespace {

Variant Left(std::u16string_view text, size_t n) {
  return Variant(std::u16string(text.substr(0, n)));
}

Variant NowText() {
  return Variant(IsoDate(Now()));
}

}  // namespace

std::u16string StoredLink(std::u16string_view link) {
  return ReplaceAll(std::u16string(link), u"http://", u"").substr(0, 150);
}

void AddRecord(ado::Connection& conn, const GatheredRecord& r, const SourceSite& site) {
  std::u16string sourceUrl =
      Filter(FilterKind::GatheredText, ReplaceAll(site.address, u"http://", u""));
  RunBound(conn,
           "insert into db (title, content, url, image, source, source_url, click, time) "
           "values (?, ?, ?, ?, ?, ?, 0, ?)",
           {Left(r.title, 100), Left(r.content, 150), Variant(StoredLink(r.url)),
            r.image.empty() ? Variant::Null() : Variant(r.image), Variant(site.name),
            Variant(sourceUrl), NowText()});
}

void EditRecord(ado::Connection& conn, long long id, std::u16string_view title,
                std::u16string_view content) {
  RunBound(conn, "update db set title = ?, content = ?, time = ? where id = ?",
           {Left(title, 100), Left(content, 150), NowText(), Variant(static_cast<double>(id))});
}

StoreOutcome StoreRecord(ado::Connection& conn, const GatheredRecord& record,
                         const SourceSite& site) {
  WriteTransaction transaction(conn);
  std::optional<long long> id = QueryNumber(conn, "select id from db where url = ? limit 1",
                                            {Variant(StoredLink(record.url))});
  if (id) {
    EditRecord(conn, *id, record.title, record.content);
  } else {
    AddRecord(conn, record, site);
  }
  transaction.Commit();
  return id ? StoreOutcome::Updated : StoreOutcome::Inserted;
}

}  // namespace ostrakan::gathering
