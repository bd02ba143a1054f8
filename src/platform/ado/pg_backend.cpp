#include "platform/ado/pg_backend.h"

#include <libpq-fe.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <limits>
#include <map>
#include <mutex>
#include <regex>
#include <stdexcept>
#include <vector>

#include "platform/ado/database_error.h"
#include "platform/ado/statement_text.h"

namespace ostrakan::ado {
namespace {

// Type oids of the built-in types the schema uses.
constexpr Oid kBool = 16, kBytea = 17, kInt8 = 20, kInt2 = 21, kInt4 = 23, kFloat4 = 700,
              kFloat8 = 701, kNumeric = 1700, kDate = 1082, kTimestamp = 1114, kTimestampTz = 1184;
constexpr size_t kIdlePerAddress = 16;
// Rows of an abandoned run read to keep its connection; a longer rest closes the connection.
constexpr int kDrainBeforeClosing = 256;
// The advisory lock that serializes write transactions (any number; the same in every process).
constexpr const char* kBeginWrite = "BEGIN; SELECT pg_advisory_xact_lock(7031853)";
// (db_store_entry in schema.pg.sql takes the same lock.)

struct ResultFree {
  void operator()(PGresult* r) const { PQclear(r); }
};
using ResultPtr = std::unique_ptr<PGresult, ResultFree>;

DatabaseError ServerError(PGconn* conn, const PGresult* result = nullptr) {
  std::string text = result ? PQresultErrorMessage(result) : "";
  if (text.empty()) text = PQerrorMessage(conn);
  // One line for the log: libpq's explanation of a lost connection follows on lines of its own.
  if (const size_t nl = text.find('\n'); nl != std::string::npos) text.resize(nl);
  while (!text.empty() && text.back() == ' ') text.pop_back();
  if (text.empty()) text = "the database connection failed";
  return DatabaseError(kProviderError, FromUtf8(text), 0, 0);
}

class PgStatement;

// One connection of a session, and the statement whose rows are being read on it.
struct Link {
  PGconn* conn = nullptr;
  PgStatement* reading = nullptr;
};

// A connection to the database, newly made or from the pool.
PGconn* OpenLink(const std::string& uri);

// One server session. A statement runs on a connection that no other statement is reading
// rows from, so a page that runs statements while a set streams gets a second connection
// (from the pool) rather than loading the set; only inside a write transaction, where every
// statement must run on the transaction's connection, does a set under way get read into
// memory first.
struct Session {
  std::string uri;
  std::vector<std::unique_ptr<Link>> links;
  Link* tx = nullptr;  // the connection of the open write transaction
  ~Session();
  Link* FreeLink() {
    for (auto& link : links) {
      if (link->reading) continue;
      if (!link->conn) link->conn = OpenLink(uri);  // closed when a long run was abandoned
      return link.get();
    }
    links.push_back(std::make_unique<Link>());
    links.back()->conn = OpenLink(uri);
    return links.back().get();
  }
  Link* LinkFor() {
    if (tx && PQtransactionStatus(tx->conn) == PQTRANS_IDLE) tx = nullptr;
    return tx ? tx : FreeLink();
  }
  static void Exec(Link& link, const char* sql) {
    ResultPtr r(PQexec(link.conn, sql));
    const ExecStatusType status = PQresultStatus(r.get());
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
      throw ServerError(link.conn, r.get());
  }
  static void FinishReading(Link& link);  // reads the rest of the rows under way into memory
};

std::mutex poolMutex;
std::map<std::string, std::vector<PGconn*>>& Pool() {
  static auto* pool = new std::map<std::string, std::vector<PGconn*>>;
  return *pool;
}

Session::~Session() {
  for (auto& link : links) {
    PGconn* conn = link->conn;
    const bool reusable = conn && !link->reading && PQstatus(conn) == CONNECTION_OK &&
                          PQtransactionStatus(conn) == PQTRANS_IDLE;
    if (reusable) {
      std::lock_guard lock(poolMutex);
      auto& idle = Pool()[uri];
      if (idle.size() < kIdlePerAddress) {
        idle.push_back(conn);
        continue;
      }
    }
    if (conn) PQfinish(conn);
  }
}

// A value as the text PostgreSQL reads it (nullopt for NULL).
std::optional<std::string> TextOf(const Variant& value, bool asDate) {
  switch (value.type()) {
    case VarType::Empty:
    case VarType::Null:
      return std::nullopt;
    case VarType::Boolean:
      return CBool(value) ? "-1" : "0";
    case VarType::Integer:
    case VarType::Long:
      if (asDate) return ToUtf8(IsoDate(CDbl(value)));
      return std::to_string(CLng(value));
    case VarType::Double: {
      const double d = CDbl(value);
      if (asDate) return ToUtf8(IsoDate(d));
      if (d == static_cast<double>(static_cast<long long>(d)) && d > -9.2e18 && d < 9.2e18)
        return std::to_string(static_cast<long long>(d));
      char buf[40];
      std::snprintf(buf, sizeof buf, "%.17g", d);
      return std::string(buf);
    }
    case VarType::Date:
      return ToUtf8(IsoDate(CDate(value)));
    case VarType::String: {
      if (value.str().find(u'\0') != std::u16string::npos) throw NulInText();
      if (asDate) {
        if (const std::optional<double> date = ParseDate(value.str()))
          return ToUtf8(IsoDate(*date));
      }
      return ToUtf8(value.str());
    }
    case VarType::Bytes: {
      static constexpr char kHex[] = "0123456789abcdef";
      std::string out = "\\x";
      for (uint8_t b : value.bytes()) {
        out += kHex[b >> 4];
        out += kHex[b & 15];
      }
      return out;
    }
    case VarType::Object:
      break;
  }
  throw TypeMismatch();
}

Variant ValueOf(const PGresult* r, int column, bool isDate) {
  if (PQgetisnull(r, 0, column)) return Variant::Null();
  const char* text = PQgetvalue(r, 0, column);
  const int length = PQgetlength(r, 0, column);
  switch (PQftype(r, column)) {
    case kBool:
      return Variant(static_cast<int32_t>(text[0] == 't' ? -1 : 0));
    case kInt2:
    case kInt4:
    case kInt8: {
      const long long v = std::strtoll(text, nullptr, 10);
      if (v >= std::numeric_limits<int32_t>::min() && v <= std::numeric_limits<int32_t>::max())
        return Variant(static_cast<int32_t>(v));
      return Variant(static_cast<double>(v));
    }
    case kFloat4:
    case kFloat8:
    case kNumeric:
      return Variant(std::strtod(text, nullptr));
    case kBytea: {
      Bytes out;
      for (int i = 2; i + 1 < length; i += 2) {
        auto nibble = [](char c) { return c <= '9' ? c - '0' : (c | 32) - 'a' + 10; };
        out.push_back(static_cast<uint8_t>(nibble(text[i]) << 4 | nibble(text[i + 1])));
      }
      return Variant(std::move(out));
    }
    default:
      break;
  }
  std::u16string value = FromUtf8(std::string_view(text, static_cast<size_t>(length)));
  if (isDate) {
    if (auto date = ParseDate(value)) return Variant::Date(*date);
  }
  return Variant(std::move(value));
}

// Refuses what the SQLite backend refuses: no statement at all, or a second one after it.
void CheckOneStatement(std::u16string_view sql) {
  if (sql.find(u'\0') != std::u16string_view::npos) throw NulInText();
  bool seen = false;
  bool ended = false;
  for (size_t i = 0; i < sql.size();) {
    const size_t skipped = SkipQuoted(sql, i);
    const bool comment = skipped != i && sql[i] != u'\'' && sql[i] != u'"' && sql[i] != u'[';
    if (skipped != i) {
      if (!comment) {
        if (ended)
          throw ScriptError(kProviderError, u"Characters found after end of SQL statement.");
        seen = true;
      }
      i = skipped;
      continue;
    }
    const char16_t c = sql[i++];
    if (c == u';') {
      ended = seen;
    } else if (c != u' ' && c != u'\t' && c != u'\r' && c != u'\n') {
      if (ended) throw ScriptError(kProviderError, u"Characters found after end of SQL statement.");
      seen = true;
    }
  }
  if (!seen) throw ScriptError(-2147217908, u"Command text was not set for the command object.");
}

// The highest $N mark outside literals.
size_t MarksIn(std::u16string_view sql) {
  size_t highest = 0;
  for (size_t i = 0; i < sql.size();) {
    const size_t skipped = SkipQuoted(sql, i);
    if (skipped != i) {
      i = skipped;
      continue;
    }
    if (sql[i++] != u'$') continue;
    size_t n = 0;
    while (i < sql.size() && sql[i] >= u'0' && sql[i] <= u'9') n = n * 10 + (sql[i++] - u'0');
    highest = std::max(highest, n);
  }
  return highest;
}

// "select count(*) [as name] from db" without a condition reads the count that the schema's
// triggers keep in row_count (exact and transactional) rather than reading every row; the
// table's own count stands in should the row be missing.
std::optional<std::u16string> KeptRowCount(std::u16string_view sql) {
  if (sql.size() > 96) return std::nullopt;
  // Most statements name no count: a look for the word spares them the expression, which costs
  // as much as preparing the statement.
  const auto lower = [](char16_t c) { return c >= u'A' && c <= u'Z' ? c + 32 : c; };
  const std::u16string_view word = u"count";
  const auto at = std::search(sql.begin(), sql.end(), word.begin(), word.end(),
                              [&](char16_t a, char16_t b) { return lower(a) == b; });
  if (at == sql.end()) return std::nullopt;
  static const std::regex kCount(
      R"(^\s*select\s+count\s*\(\s*\*\s*\)\s*(?:as\s+([a-z_][a-z0-9_]*)\s+)?from\s+"?db"?\s*;?\s*$)",
      std::regex::icase | std::regex::optimize);
  const std::string text = ToUtf8(sql);
  std::smatch m;
  if (!std::regex_match(text, m, kCount)) return std::nullopt;
  const std::string name = m[1].matched ? m[1].str() : "count";
  return FromUtf8(
      "select coalesce((select n from row_count where name = 'db'), "
      "(select count(*) from db)) as " +
      name);
}

class PgStatement : public Statement {
 public:
  PgStatement(std::shared_ptr<Session> session, std::u16string_view sql)
      : session_(std::move(session)), sql_(ToUtf8(TrimStatementEnd(sql))), marks_(MarksIn(sql)) {}
  ~PgStatement() override {
    try {
      Abandon();
    } catch (const std::exception&) {
      // A connection that broke meanwhile is not reused (the session sees its status).
    }
  }

  int ColumnCount() override {
    if (state_ == State::kIdle) Start();
    return meta_ ? PQnfields(meta_.get()) : 0;
  }
  std::u16string ColumnName(int i) override {
    ColumnCount();
    return FromUtf8(PQfname(meta_.get(), i));
  }
  bool ColumnIsDate(int i) override {
    ColumnCount();
    const Oid type = PQftype(meta_.get(), i);
    return type == kDate || type == kTimestamp || type == kTimestampTz;
  }
  bool Step() override {
    if (state_ == State::kIdle || state_ == State::kCommandDone) Start();
    if (fresh_) {
      fresh_ = false;
      row_ = std::move(first_);
      if (row_) return true;
      state_ = State::kIdle;
      return false;
    }
    row_ = NextRow();
    if (row_) return true;
    state_ = State::kIdle;
    return false;
  }
  Variant Column(int i, bool isDate) override { return ValueOf(row_.get(), i, isDate); }
  std::optional<long long> ColumnInteger(int i) override {
    const Oid type = PQftype(row_.get(), i);
    if ((type != kInt2 && type != kInt4 && type != kInt8) || PQgetisnull(row_.get(), 0, i))
      return std::nullopt;
    return std::strtoll(PQgetvalue(row_.get(), 0, i), nullptr, 10);
  }
  void Reset() override {
    if (fresh_) return;  // nothing read yet: the run under way serves the next Step
    Abandon();
  }
  void Bind(const Params& params, const std::vector<bool>& asDate) override {
    if (params.size() != marks_)
      throw std::invalid_argument("the statement's marks and its bound values differ in number");
    Abandon();
    values_.clear();
    for (size_t i = 0; i < params.size(); ++i)
      values_.push_back(TextOf(params[i], i < asDate.size() && asDate[i]));
  }
  long Run() override {
    if (state_ != State::kCommandDone) {
      Abandon();
      Start();
    }
    while (state_ == State::kReading && NextRow()) {
    }
    state_ = State::kIdle;
    return affected_;
  }

  // Reads the rows still to come into memory, freeing the connection for another statement.
  void FinishReading() {
    while (ResultPtr r = Fetch()) buffered_.push_back(std::move(r));
  }

 private:
  enum class State { kIdle, kReading, kCommandDone };

  // Sends the statement and reads its first answer: the columns and first row of a query, or
  // the count of a change.
  void Start() {
    Abandon();
    link_ = session_->LinkFor();
    if (link_->reading) Session::FinishReading(*link_);
    PGconn* conn = link_->conn;
    std::vector<const char*> values;
    for (const auto& v : values_) values.push_back(v ? v->c_str() : nullptr);
    if (!PQsendQueryParams(conn, sql_.c_str(), static_cast<int>(values.size()), nullptr,
                           values.data(), nullptr, nullptr, 0) ||
        !PQsetSingleRowMode(conn))
      throw Drained(ServerError(conn));
    ResultPtr r(PQgetResult(conn));
    switch (PQresultStatus(r.get())) {
      case PGRES_SINGLE_TUPLE:
        meta_.reset(PQcopyResult(r.get(), PG_COPYRES_ATTRS));
        first_ = std::move(r);
        state_ = State::kReading;
        link_->reading = this;
        break;
      case PGRES_TUPLES_OK:  // a query without rows
        meta_ = std::move(r);
        first_.reset();
        state_ = State::kIdle;
        Drained();
        break;
      case PGRES_COMMAND_OK:
        meta_.reset();
        affected_ = std::atol(PQcmdTuples(r.get()));
        state_ = State::kCommandDone;
        Drained();
        return;
      default:
        throw Drained(ServerError(conn, r.get()));
    }
    fresh_ = true;
  }

  // The next row of the run under way, or null at its end.
  ResultPtr NextRow() {
    if (!buffered_.empty()) {
      ResultPtr r = std::move(buffered_.front());
      buffered_.pop_front();
      return r;
    }
    return Fetch();
  }

  // Reads one row from the connection; null (and the connection freed) at the end.
  ResultPtr Fetch() {
    if (!link_ || link_->reading != this) return nullptr;
    PGconn* conn = link_->conn;
    ResultPtr r(PQgetResult(conn));
    const ExecStatusType status = PQresultStatus(r.get());
    if (status == PGRES_SINGLE_TUPLE) return r;
    link_->reading = nullptr;
    if (!r || status == PGRES_TUPLES_OK) {
      Drained();
      return nullptr;
    }
    throw Drained(ServerError(conn, r.get()));
  }

  // Reads the connection's remaining answers (after the last, or after an error).
  DatabaseError Drained(DatabaseError error = DatabaseError(0, u"", 0, 0)) {
    if (link_->reading == this) link_->reading = nullptr;
    while (PGresult* rest = PQgetResult(link_->conn)) PQclear(rest);
    return error;
  }

  // Ends the run under way. A few rows still to come are read and dropped; past those the
  // connection is closed instead (the server stops at its next write), since reading the rest
  // of a long run costs as much as the run itself: a list page leaves the rows after its own
  // unread. Inside a write transaction the rows are read to the end, as the transaction needs
  // its connection.
  void Abandon() {
    if (link_ && link_->reading == this) {
      const bool keep = session_->tx == link_;
      for (int left = kDrainBeforeClosing; keep || left > 0; --left) {
        if (!Fetch()) break;
      }
      if (link_->reading == this) {
        link_->reading = nullptr;
        PQfinish(link_->conn);
        link_->conn = nullptr;
      }
    }
    buffered_.clear();
    first_.reset();
    row_.reset();
    fresh_ = false;
    if (state_ != State::kCommandDone) state_ = State::kIdle;
  }

  std::shared_ptr<Session> session_;
  Link* link_ = nullptr;  // the connection of the last run
  std::string sql_;
  size_t marks_;
  std::vector<std::optional<std::string>> values_;
  State state_ = State::kIdle;
  ResultPtr meta_;   // the columns of the last run of a query
  ResultPtr first_;  // the first row, read when the run started, not yet stepped to
  ResultPtr row_;    // the current row
  bool fresh_ = false;
  std::deque<ResultPtr> buffered_;
  long affected_ = 0;
};

void Session::FinishReading(Link& link) {
  if (PgStatement* statement = link.reading) statement->FinishReading();
}

class PgBackend : public Backend {
 public:
  explicit PgBackend(std::shared_ptr<Session> session) : session_(std::move(session)) {}
  Dialect dialect() const override { return Dialect::kPostgres; }
  StatementPtr PrepareUnbound(std::u16string_view sql) override {
    CheckOneStatement(sql);
    if (std::optional<std::u16string> kept = KeptRowCount(sql); kept && KeepsRowCount())
      return std::make_unique<PgStatement>(session_, *kept);
    return std::make_unique<PgStatement>(session_, sql);
  }
  long long Insert(std::u16string_view sql, const Params& params,
                   const std::vector<bool>& asDate) override {
    StatementPtr stmt =
        Prepare(std::u16string(TrimStatementEnd(sql)) + u" RETURNING id", params, asDate);
    long long id = 0;
    if (stmt->Step()) id = stmt->ColumnInteger(0).value_or(0);
    stmt->Reset();
    return id;
  }
  bool InTransaction() override {
    return session_->tx && PQtransactionStatus(session_->tx->conn) != PQTRANS_IDLE;
  }
  void BeginWrite() override {
    Link* link = session_->FreeLink();
    Session::Exec(*link, kBeginWrite);
    session_->tx = link;
  }
  void Commit() override {
    Link* link = session_->tx;
    if (!link) return;
    Session::FinishReading(*link);
    session_->tx = nullptr;
    // After a failed statement the server refuses the rest of the transaction and answers
    // COMMIT with ROLLBACK, without an error: say so, or the caller would count undone writes
    // as stored.
    const bool failed = PQtransactionStatus(link->conn) == PQTRANS_INERROR;
    Session::Exec(*link, failed ? "ROLLBACK" : "COMMIT");
    if (failed)
      throw ScriptError(kProviderError,
                        u"The transaction was rolled back: a statement in it had failed.");
  }
  void Rollback() override {
    Link* link = session_->tx;
    if (!link) return;
    session_->tx = nullptr;
    try {
      Session::FinishReading(*link);
    } catch (const std::exception&) {
    }
    if (PQtransactionStatus(link->conn) != PQTRANS_IDLE) PQclear(PQexec(link->conn, "ROLLBACK"));
  }

 private:
  // Whether the database has the row_count table (a database made by an earlier version of
  // the schema has not); asked once per address.
  bool KeepsRowCount() {
    static std::mutex mutex;
    static auto* known = new std::map<std::string, bool>;
    std::lock_guard lock(mutex);
    if (auto it = known->find(session_->uri); it != known->end()) return it->second;
    Link* link = session_->LinkFor();
    if (link->reading) Session::FinishReading(*link);
    ResultPtr r(PQexec(link->conn, "SELECT to_regclass('row_count') IS NOT NULL"));
    if (PQresultStatus(r.get()) != PGRES_TUPLES_OK) throw ServerError(link->conn, r.get());
    const bool keeps = PQgetvalue(r.get(), 0, 0)[0] == 't';
    known->emplace(session_->uri, keeps);
    return keeps;
  }

  std::shared_ptr<Session> session_;
};

// An idle session of the pool that still answers, or null.
PGconn* TakeIdle(const std::string& uri) {
  std::lock_guard lock(poolMutex);
  auto& idle = Pool()[uri];
  while (!idle.empty()) {
    PGconn* conn = idle.back();
    idle.pop_back();
    // A server that restarted closed the socket: reading it tells.
    if (PQconsumeInput(conn) && PQstatus(conn) == CONNECTION_OK) return conn;
    PQfinish(conn);
  }
  return nullptr;
}

// The process's time zone by name, so that the database's local time (LOCALTIMESTAMP, the
// default of db.time) is the local time the pages show; "" when it cannot be told.
std::string LocalZoneName() {
  std::string name;
  if (const char* tz = std::getenv("TZ"); tz && *tz) {
    name = tz[0] == ':' ? tz + 1 : tz;
  } else {
    std::error_code ec;
    const std::filesystem::path target = std::filesystem::read_symlink("/etc/localtime", ec);
    const std::string text = target.string();
    if (const size_t at = text.find("zoneinfo/"); !ec && at != std::string::npos)
      name = text.substr(at + 9);
  }
  for (char c : name) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '/' && c != '_' && c != '+' &&
        c != '-')
      return "";
  }
  return name;
}

PGconn* OpenLink(const std::string& uri) {
  if (PGconn* idle = TakeIdle(uri)) return idle;
  PGconn* conn = PQconnectdb(uri.c_str());
  if (PQstatus(conn) != CONNECTION_OK) {
    std::string why = conn ? PQerrorMessage(conn) : "out of memory";
    PQfinish(conn);
    while (!why.empty() && (why.back() == '\n' || why.back() == ' ')) why.pop_back();
    if (const size_t nl = why.rfind('\n'); nl != std::string::npos) why = why.substr(nl + 1);
    throw ScriptError(kProviderError, u"The database server cannot be reached: " + FromUtf8(why));
  }
  if (PQsetClientEncoding(conn, "UTF8") != 0) {
    PQfinish(conn);
    throw ScriptError(kProviderError, u"The database server does not accept UTF-8 text.");
  }
  static const std::string zone = LocalZoneName();
  if (!zone.empty()) PQclear(PQexec(conn, ("SET TimeZone TO '" + zone + "'").c_str()));
  return conn;
}

// Larger than any address file; smaller than any site database (its first page alone).
constexpr std::uintmax_t kLongestAddressFile = 4096;

}  // namespace

bool IsServerAddress(std::string_view uri) {
  return uri.starts_with("postgresql://") || uri.starts_with("postgres://");
}

std::u16string ServerArrayLiteral(const std::vector<std::optional<std::u16string>>& texts) {
  std::u16string out = u"{";
  for (const std::optional<std::u16string>& text : texts) {
    if (&text != &texts.front()) out += u',';
    if (!text) {
      out += u"NULL";
      continue;
    }
    if (text->find(u'\0') != std::u16string::npos) throw NulInText();
    out += u'"';
    for (const char16_t c : *text) {
      if (c == u'"' || c == u'\\') out += u'\\';
      out += c;
    }
    out += u'"';
  }
  return out + u'}';
}

std::optional<std::string> ServerAddressIn(const std::filesystem::path& file) {
  // Only a short file can hold an address. A database file is never opened here: closing any
  // descriptor of a file drops every POSIX lock this process holds on it, SQLite's included,
  // and another process would then take the open connections' write-ahead log for abandoned
  // and remove it (their later commits lost to everyone else).
  std::error_code ec;
  const std::uintmax_t size = std::filesystem::file_size(file, ec);
  if (ec || size >= kLongestAddressFile) return std::nullopt;
  std::ifstream in(file, std::ios::binary);
  char head[16] = {};
  in.read(head, sizeof head);
  if (!IsServerAddress(std::string_view(head, static_cast<size_t>(in.gcount()))))
    return std::nullopt;
  in.clear();
  in.seekg(0);
  std::string line;
  std::getline(in, line);
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
  return line;
}

std::shared_ptr<Backend> ConnectServer(const std::string& uri) {
  auto session = std::make_shared<Session>();
  session->uri = uri;
  session->FreeLink();  // the first connection now, so that an unreachable server says so
  return std::make_shared<PgBackend>(std::move(session));
}

void DropIdleServerSessions() {
  std::lock_guard lock(poolMutex);
  for (auto& [uri, idle] : Pool()) {
    for (PGconn* conn : idle) PQfinish(conn);
    idle.clear();
  }
}

bool AddressHoldsPassword(const std::string& uri) {
  char* error = nullptr;
  PQconninfoOption* options = PQconninfoParse(uri.c_str(), &error);
  PQfreemem(error);
  bool found = false;
  for (PQconninfoOption* o = options; o && o->keyword; ++o) {
    if (std::string_view(o->keyword) == "password" && o->val && *o->val) found = true;
  }
  PQconninfoFree(options);
  return found;
}

void CreateServerSite(const std::string& uri, const std::string& schema, const std::string& admin,
                      const std::string& digest) {
  ConnectServer(uri);  // an unreachable server is one sentence
  auto fail = [](const std::string& what, PGconn* conn, const PGresult* r) {
    std::string why = ToUtf8(ServerError(conn, r).description);
    if (const size_t nl = why.find('\n'); nl != std::string::npos) why.resize(nl);
    throw ScriptError(kProviderError, FromUtf8(what + why));
  };
  PGconn* conn = PQconnectdb(uri.c_str());
  std::unique_ptr<PGconn, void (*)(PGconn*)> guard(conn, PQfinish);
  ResultPtr tables(PQexec(conn,
                          "SELECT count(*) FROM information_schema.tables WHERE table_schema NOT "
                          "IN ('pg_catalog', 'information_schema')"));
  if (PQresultStatus(tables.get()) != PGRES_TUPLES_OK)
    fail("the database cannot be read: ", conn, tables.get());
  if (std::string(PQgetvalue(tables.get(), 0, 0)) != "0")
    throw ScriptError(kProviderError,
                      u"the database holds tables already; a new site needs an empty database");
  // The schema's "IF NOT EXISTS" and "DROP ... IF EXISTS" skip with a NOTICE each, which libpq
  // would print on standard error between init's own lines.
  ResultPtr quiet(PQexec(conn, "SET client_min_messages TO warning"));
  ResultPtr begin(PQexec(conn, "BEGIN"));
  ResultPtr made(PQexec(conn, schema.c_str()));
  if (PQresultStatus(made.get()) != PGRES_COMMAND_OK &&
      PQresultStatus(made.get()) != PGRES_TUPLES_OK)
    fail("the database schema failed: ", conn, made.get());
  const char* values[] = {admin.c_str(), digest.c_str()};
  ResultPtr added(PQexecParams(conn, "INSERT INTO admin (username, password) VALUES ($1, $2)", 2,
                               nullptr, values, nullptr, nullptr, 0));
  if (PQresultStatus(added.get()) != PGRES_COMMAND_OK)
    fail("cannot add the administrator: ", conn, added.get());
  ResultPtr commit(PQexec(conn, "COMMIT"));
  if (PQresultStatus(commit.get()) != PGRES_COMMAND_OK)
    fail("the database schema failed: ", conn, commit.get());
}

}  // namespace ostrakan::ado
