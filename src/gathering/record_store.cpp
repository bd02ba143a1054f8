#include "gathering/record_store.h"

#include "frame/filtration.h"
#include "gathering/bound_sql.h"
#include "platform/ado/write_transaction.h"
#include "platform/clock.h"

namespace ostrakan::gathering {
namespace {

Variant Left(std::u16string_view text, size_t n) {
  return Variant(std::u16string(text.substr(0, n)));
}

Variant NowText() {
  return Variant(IsoDate(CurrentClock().Now()));
}

}  // namespace

std::u16string StoredLink(std::u16string_view link) {
  return ReplaceAll(std::u16string(link), u"http://", u"").substr(0, 150);
}

namespace {

constexpr char kLookup[] = "select id from db where url = ? limit 1";
constexpr char kInsert[] =
    "insert into db (title, content, url, image, source, source_url, click, time) "
    "values (?, ?, ?, ?, ?, ?, 0, ?)";
constexpr char kUpdate[] = "update db set title = ?, content = ?, time = ? where id = ?";

std::u16string SourceAddress(const SourceSite& site) {
  return Filter(FilterKind::GatheredText, ReplaceAll(site.address, u"http://", u""));
}

void Insert(BoundStatement& insert, const GatheredRecord& r, const SourceSite& site,
            const std::u16string& sourceUrl) {
  insert.Run({Left(r.title, 100), Left(r.content, 150), Variant(StoredLink(r.url)),
              r.image.empty() ? Variant::Null() : Variant(r.image), Variant(site.name),
              Variant(sourceUrl), NowText()});
}

void Update(BoundStatement& update, long long id, std::u16string_view title,
            std::u16string_view content) {
  update.Run({Left(title, 100), Left(content, 150), NowText(), Variant(static_cast<double>(id))});
}

}  // namespace

void AddRecord(ado::Connection& conn, const GatheredRecord& r, const SourceSite& site) {
  BoundStatement insert(conn, kInsert);
  Insert(insert, r, site, SourceAddress(site));
}

void EditRecord(ado::Connection& conn, long long id, std::u16string_view title,
                std::u16string_view content) {
  BoundStatement update(conn, kUpdate);
  Update(update, id, title, content);
}

struct RecordStore::Statements {
  explicit Statements(ado::Connection& conn)
      : lookup(conn, kLookup), insert(conn, kInsert), update(conn, kUpdate) {}
  BoundStatement lookup, insert, update;
  std::u16string sourceUrl;
};

RecordStore::RecordStore(ado::Connection& conn, SourceSite site)
    : conn_(conn), site_(std::move(site)), statements_(std::make_unique<Statements>(conn)) {
  statements_->sourceUrl = SourceAddress(site_);
}

RecordStore::~RecordStore() = default;

StoreOutcome RecordStore::Store(const GatheredRecord& record) {
  ado::WriteTransaction transaction(conn_);
  Statements& s = *statements_;
  const bool known = s.lookup.Run({Variant(StoredLink(record.url))});
  if (known) {
    Update(s.update, s.lookup.Number(), record.title, record.content);
  } else {
    Insert(s.insert, record, site_, s.sourceUrl);
  }
  transaction.Commit();
  return known ? StoreOutcome::Updated : StoreOutcome::Inserted;
}

StoreOutcome StoreRecord(ado::Connection& conn, const GatheredRecord& record,
                         const SourceSite& site) {
  return RecordStore(conn, site).Store(record);
}

}  // namespace ostrakan::gathering
