#include "gathering/record_store.h"

#include "frame/filtration.h"
#include "platform/ado/prepared_statement.h"
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

constexpr char16_t kLookup[] = u"select id from db where url = ? limit 1";
constexpr char16_t kInsert[] =
    u"insert into db (title, content, url, image, source, source_url, click, time) "
    u"values (?, ?, ?, ?, ?, ?, 0, ?)";
constexpr char16_t kUpdate[] = u"update db set title = ?, content = ?, time = ? where id = ?";

std::u16string SourceAddress(const SourceSite& site) {
  return Filter(FilterKind::GatheredText, ReplaceAll(site.address, u"http://", u""));
}

void Insert(ado::PreparedStatement& insert, const GatheredRecord& r, const SourceSite& site,
            const std::u16string& sourceUrl) {
  insert.Run({Left(r.title, 100), Left(r.content, 150), Variant(StoredLink(r.url)),
              r.image.empty() ? Variant::Null() : Variant(r.image), Variant(site.name),
              Variant(sourceUrl), NowText()});
}

void Update(ado::PreparedStatement& update, const Variant& id, std::u16string_view title,
            std::u16string_view content) {
  update.Run({Left(title, 100), Left(content, 150), NowText(), id});
}

}  // namespace

void AddRecord(ado::Connection& conn, const GatheredRecord& r, const SourceSite& site) {
  ado::PreparedStatement insert(conn, kInsert);
  Insert(insert, r, site, SourceAddress(site));
}

void EditRecord(ado::Connection& conn, long long id, std::u16string_view title,
                std::u16string_view content) {
  ado::PreparedStatement update(conn, kUpdate);
  Update(update, Variant(static_cast<double>(id)), title, content);
}

struct RecordStore::Statements {
  explicit Statements(ado::Connection& conn)
      : lookup(conn, kLookup), insert(conn, kInsert), update(conn, kUpdate) {}
  ado::PreparedStatement lookup, insert, update;
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
  const std::optional<Variant> known = s.lookup.FirstValue({Variant(StoredLink(record.url))});
  if (known) {
    Update(s.update, *known, record.title, record.content);
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
