#include "gathering/record_store.h"

#include <cmath>
#include <mutex>
#include <optional>
#include <set>

#include "core/script_error.h"
#include "frame/filtration.h"
#include "platform/ado/database_error.h"
#include "platform/ado/pg_backend.h"
#include "platform/ado/prepared_statement.h"
#include "platform/ado/write_transaction.h"
#include "platform/clock.h"

namespace ostrakan::gathering {
namespace {

Variant Left(std::u16string_view text, size_t n) {
  return Variant(std::u16string(text.substr(0, n)));
}

// The stored text is exactly what Left(text, n) would store.
bool Holds(const Variant& stored, std::u16string_view text, size_t n) {
  return stored.type() == VarType::String && stored.str() == text.substr(0, n);
}

Variant NowText() {
  return Variant(IsoDate(CurrentClock().Now()));
}

// NowText for a store that writes many records a second: the text is made again only when the
// second it names changes (the same day and rounded second that IsoDate reads).
class NowTexts {
 public:
  const Variant& Now() {
    const double now = CurrentClock().Now();
    const double day = std::floor(now);
    const long long second =
        static_cast<long long>(day) * 86400 + std::llround((now - day) * 86400.0);
    if (second != second_) {
      second_ = second;
      text_ = Variant(IsoDate(now));
    }
    return text_;
  }

 private:
  long long second_ = -1;
  Variant text_;
};

}  // namespace

std::u16string StoredLink(std::u16string_view link) {
  return ReplaceAll(std::u16string(link), u"http://", u"").substr(0, 150);
}

namespace {

// The lookup also reads what a refresh would overwrite, so that a refresh that changes nothing
// but the time writes the time alone: the title index and the record index's notes stay
// untouched.
constexpr char16_t kLookup[] = u"select id, title, content from db where url = ? limit 1";
constexpr char16_t kTouch[] = u"update db set time = ? where id = ?";
constexpr char16_t kInsert[] =
    u"insert into db (title, content, url, image, source, source_url, click, time) "
    u"values (?, ?, ?, ?, ?, ?, 0, ?)";
constexpr char16_t kUpdate[] = u"update db set title = ?, content = ?, time = ? where id = ?";

std::u16string SourceAddress(const SourceSite& site) {
  return Filter(FilterKind::GatheredText, ReplaceAll(site.address, u"http://", u""));
}

void Insert(ado::PreparedStatement& insert, const GatheredRecord& r, const SourceSite& site,
            const std::u16string& sourceUrl, std::u16string link, const Variant& now) {
  insert.Run({Left(r.title, 100), Left(r.content, 150), Variant(std::move(link)),
              r.image.empty() ? Variant::Null() : Variant(r.image), Variant(site.name),
              Variant(sourceUrl), now});
}

void Update(ado::PreparedStatement& update, const Variant& id, std::u16string_view title,
            std::u16string_view content, const Variant& now) {
  update.Run({Left(title, 100), Left(content, 150), now, id});
}

}  // namespace

void AddRecord(ado::Connection& conn, const GatheredRecord& r, const SourceSite& site) {
  ado::PreparedStatement insert(conn, kInsert);
  Insert(insert, r, site, SourceAddress(site), StoredLink(r.url), NowText());
}

void EditRecord(ado::Connection& conn, long long id, std::u16string_view title,
                std::u16string_view content) {
  ado::PreparedStatement update(conn, kUpdate);
  Update(update, Variant(static_cast<double>(id)), title, content, NowText());
}

// PostgreSQL: the lookup, the insert or refresh and the write lock in one call to the server
// (db_store_entry in schema.pg.sql) instead of four round trips, and a page's entries in one
// call (db_store_entries). A database whose schema predates them is written statement by
// statement, or entry by entry.
constexpr char16_t kStoreEntry[] = u"select db_store_entry(?, ?, ?, ?, ?, ?, ?)";
constexpr char16_t kStoreEntries[] = u"select db_store_entries(?, ?, ?, ?, ?, ?, ?)";

struct StoreCalls {
  bool one = false;   // db_store_entry
  bool many = false;  // db_store_entries
};

// The store functions the database has. A database seen to have both is remembered for the
// process (by its connection string), so that storing one entry at a time (the pages' runs)
// does not ask again.
StoreCalls StoreCallsOf(ado::Connection& conn) {
  if (conn.backend().dialect() != ado::Dialect::kPostgres) return {};
  static std::mutex mutex;
  static std::set<std::u16string> having;
  {
    std::lock_guard<std::mutex> lock(mutex);
    if (having.count(conn.ConnectionString)) return {true, true};
  }
  ado::PreparedStatement look(
      conn,
      u"select count(case when proname = 'db_store_entry' then 1 end), "
      u"count(case when proname = 'db_store_entries' then 1 end) from pg_catalog.pg_proc "
      u"where proname in ('db_store_entry', 'db_store_entries')");
  const std::vector<Variant> found = look.FirstRow({}).value_or(std::vector<Variant>{});
  const StoreCalls calls{found.size() == 2 && CDbl(found[0]) != 0,
                         found.size() == 2 && CDbl(found[1]) != 0};
  if (calls.one && calls.many) {
    std::lock_guard<std::mutex> lock(mutex);
    having.insert(conn.ConnectionString);
  }
  return calls;
}

namespace {

// The statements of a store written statement by statement.
struct StepStatements {
  explicit StepStatements(ado::Connection& conn)
      : lookup(conn, kLookup), insert(conn, kInsert), update(conn, kUpdate), touch(conn, kTouch) {}
  ado::PreparedStatement lookup, insert, update, touch;
};

}  // namespace

// Either db_store_entry or the four statements, whichever the store uses: a store made for
// one entry (StoreRecord) prepares only what it runs.
struct RecordStore::Statements {
  explicit Statements(ado::Connection& conn) : calls(StoreCallsOf(conn)) {
    if (calls.one)
      store.emplace(conn, kStoreEntry);
    else
      steps.emplace(conn);
  }
  StoreCalls calls;
  std::optional<ado::PreparedStatement> store;
  std::optional<ado::PreparedStatement> storeMany;  // prepared when first used
  std::optional<StepStatements> steps;
  std::u16string sourceUrl;
  NowTexts now;
};

RecordStore::RecordStore(ado::Connection& conn, SourceSite site)
    : conn_(conn), site_(std::move(site)), statements_(std::make_unique<Statements>(conn)) {
  statements_->sourceUrl = SourceAddress(site_);
}

RecordStore::~RecordStore() = default;

StoreOutcome RecordStore::Store(const GatheredRecord& record) {
  Statements& s = *statements_;
  std::u16string link = StoredLink(record.url);
  if (s.store) {
    const std::optional<Variant> known = s.store->FirstValue(
        {Left(record.title, 100), Left(record.content, 150), Variant(std::move(link)),
         record.image.empty() ? Variant::Null() : Variant(record.image), Variant(site_.name),
         Variant(s.sourceUrl), s.now.Now()});
    return known && CDbl(*known) != 0 ? StoreOutcome::Updated : StoreOutcome::Inserted;
  }
  StepStatements& steps = *s.steps;
  ado::WriteTransaction transaction(conn_);
  std::optional<std::vector<Variant>> known = steps.lookup.FirstRow({Variant(link)});
  const Variant& now = s.now.Now();
  if (!known) {
    Insert(steps.insert, record, site_, s.sourceUrl, std::move(link), now);
  } else if (Holds((*known)[1], record.title, 100) && Holds((*known)[2], record.content, 150)) {
    steps.touch.Run({now, (*known)[0]});
  } else {
    Update(steps.update, (*known)[0], record.title, record.content, now);
  }
  transaction.Commit();
  return known ? StoreOutcome::Updated : StoreOutcome::Inserted;
}

std::optional<std::vector<StoreOutcome>> RecordStore::StoreAtOnce(
    const std::vector<GatheredRecord>& records) {
  Statements& s = *statements_;
  if (!s.calls.many) return std::nullopt;
  std::vector<StoreOutcome> outcomes;
  if (records.empty()) return outcomes;
  // One record (an ID site's unit) takes the call made for one, without the arrays.
  if (records.size() == 1 && s.store) return std::vector<StoreOutcome>{Store(records.front())};
  if (!s.storeMany) s.storeMany.emplace(conn_, kStoreEntries);
  std::vector<std::optional<std::u16string>> titles, contents, links, images;
  for (const GatheredRecord& r : records) {
    titles.emplace_back(r.title.substr(0, 100));
    contents.emplace_back(r.content.substr(0, 150));
    links.emplace_back(StoredLink(r.url));
    images.push_back(r.image.empty() ? std::nullopt : std::optional(r.image));
  }
  const std::optional<Variant> answer = s.storeMany->FirstValue(
      {Variant(ado::ServerArrayLiteral(titles)), Variant(ado::ServerArrayLiteral(contents)),
       Variant(ado::ServerArrayLiteral(links)), Variant(ado::ServerArrayLiteral(images)),
       Variant(site_.name), Variant(s.sourceUrl), s.now.Now()});
  // The outcomes come as an array's text, "{0,1,0}".
  const std::u16string text = answer ? TextOf(*answer) : u"";
  for (const char16_t c : text) {
    if (c == u'0' || c == u'1')
      outcomes.push_back(c == u'1' ? StoreOutcome::Updated : StoreOutcome::Inserted);
  }
  if (outcomes.size() != records.size())
    throw ScriptError(ado::kProviderError, u"The database did not store the entries as asked.");
  return outcomes;
}

StoreOutcome StoreRecord(ado::Connection& conn, const GatheredRecord& record,
                         const SourceSite& site) {
  return RecordStore(conn, site).Store(record);
}

}  // namespace ostrakan::gathering
