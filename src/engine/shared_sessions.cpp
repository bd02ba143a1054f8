#include "engine/shared_sessions.h"

#include <cstdio>
#include <cstdlib>

#include "engine/sessions.h"
#include "platform/ado/backend.h"
#include "platform/ado/pg_backend.h"
#include "platform/clock.h"

namespace ostrakan::engine {
namespace {

// Tabs and line ends inside a name or value are escaped, so one item is one line.
std::string Escape(std::string_view text) {
  std::string out;
  for (char c : text) {
    if (c == '\\')
      out += "\\\\";
    else if (c == '\t')
      out += "\\t";
    else if (c == '\n')
      out += "\\n";
    else
      out += c;
  }
  return out;
}

std::string Unescape(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      out += text[i];
      continue;
    }
    const char c = text[++i];
    out += c == 't' ? '\t' : c == 'n' ? '\n' : c;
  }
  return out;
}

std::string Number(double d) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.17g", d);
  return buf;
}

Variant Field(ado::Statement& row, int i) {
  return row.Column(i, row.ColumnIsDate(i));
}

double ExpiresAt(int timeoutMinutes) {
  return CurrentClock().Now() + timeoutMinutes / 1440.0;
}

}  // namespace

std::string SharedSessions::Encode(const Session& session) {
  std::string out;
  for (const auto& [name, value] : session.Items()) {
    std::string type, text;
    switch (value.type()) {
      case VarType::Empty:
        type = "E";
        break;
      case VarType::Null:
        type = "N";
        break;
      case VarType::Boolean:
        type = "B", text = CBool(value) ? "1" : "0";
        break;
      case VarType::Integer:
        type = "I", text = std::to_string(CLng(value));
        break;
      case VarType::Long:
        type = "L", text = std::to_string(CLng(value));
        break;
      case VarType::Double:
        type = "D", text = Number(CDbl(value));
        break;
      case VarType::Date:
        type = "T", text = Number(CDate(value));
        break;
      case VarType::String:
        type = "S", text = ToUtf8(value.str());
        break;
      default:
        continue;  // objects and byte arrays stay with the page
    }
    out += Escape(ToUtf8(name)) + "\t" + type + "\t" + Escape(text) + "\n";
  }
  return out;
}

void SharedSessions::Decode(const std::string& text, Session& session) {
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    const std::string_view line(text.data() + start, end - start);
    start = end + 1;
    const size_t tab1 = line.find('\t');
    const size_t tab2 = tab1 == std::string_view::npos ? tab1 : line.find('\t', tab1 + 1);
    if (tab2 == std::string_view::npos || tab2 != tab1 + 2) continue;
    const std::u16string name = FromUtf8(Unescape(line.substr(0, tab1)));
    const std::string value = Unescape(line.substr(tab2 + 1));
    switch (line[tab1 + 1]) {
      case 'E':
        session.Set(name, Variant());
        break;
      case 'N':
        session.Set(name, Variant::Null());
        break;
      case 'B':
        session.Set(name, Variant(value == "1"));
        break;
      case 'I':
        session.Set(name, Variant(static_cast<int16_t>(std::atoi(value.c_str()))));
        break;
      case 'L':
        session.Set(name, Variant(static_cast<int32_t>(std::atol(value.c_str()))));
        break;
      case 'D':
        session.Set(name, Variant(std::strtod(value.c_str(), nullptr)));
        break;
      case 'T':
        session.Set(name, Variant::Date(std::strtod(value.c_str(), nullptr)));
        break;
      case 'S':
        session.Set(name, Variant(FromUtf8(value)));
        break;
      default:
        break;
    }
  }
}

std::shared_ptr<Session> SharedSessions::Load(const std::string& id) const {
  auto db = ado::ConnectServer(uri_);
  ado::StatementPtr row = db->Prepare(
      u"select items, code_page, timeout from web_session where id = $1 and expires > $2",
      {Variant(FromUtf8(id)), Variant::Date(CurrentClock().Now())});
  if (!row->Step()) return nullptr;
  auto session = std::make_shared<Session>();
  Decode(ToUtf8(CStr(Field(*row, 0))), *session);
  session->SetCodePage(CLng(Field(*row, 1)));
  session->SetTimeout(CLng(Field(*row, 2)));
  row->Reset();
  // The idle time restarts with every request, as in the server's own store.
  db->Prepare(u"update web_session set expires = $1 where id = $2",
              {Variant::Date(ExpiresAt(session->Timeout())), Variant(FromUtf8(id))})
      ->Run();
  return session;
}

void SharedSessions::Save(const std::string& id, const Session& session, bool signedIn) const {
  auto db = ado::ConnectServer(uri_);
  db->Prepare(
        u"insert into web_session (id, items, code_page, timeout, signed_in, expires) "
        u"values ($1, $2, $3, $4, $5, $6) on conflict (id) do update set items = excluded.items, "
        u"code_page = excluded.code_page, timeout = excluded.timeout, "
        u"signed_in = excluded.signed_in, expires = excluded.expires",
        {Variant(FromUtf8(id)), Variant(FromUtf8(Encode(session))),
         Variant(static_cast<int32_t>(session.CodePage())),
         Variant(static_cast<int32_t>(session.Timeout())),
         Variant(static_cast<int32_t>(signedIn ? 1 : 0)),
         Variant::Date(ExpiresAt(session.Timeout()))})
      ->Run();
  // Rows of sessions nobody came back for are swept now and then.
  if (id.back() == '0')
    db->Prepare(u"delete from web_session where expires < $1",
                {Variant::Date(CurrentClock().Now())})
        ->Run();
}

void SharedSessions::Claim(const std::string& id, Session& session,
                           std::u16string_view item) const {
  if (session.Get(item).IsEmpty()) return;
  const std::string before = Encode(session);
  Variant value = session.Take(item);
  const long claimed = ado::ConnectServer(uri_)
                           ->Prepare(
                               u"update web_session set items = $1 where id = $2 and "
                               u"items = $3",
                               {Variant(FromUtf8(Encode(session))), Variant(FromUtf8(id)),
                                Variant(FromUtf8(before))})
                           ->Run();
  if (claimed == 1) session.Set(item, std::move(value));
}

long SharedSessions::FailedSignIns(const std::string& address, int minutes) const {
  auto db = ado::ConnectServer(uri_);
  ado::StatementPtr count = db->Prepare(
      u"select count(*) from sign_in_failure where address = $1 and at > $2",
      {Variant(FromUtf8(address)), Variant::Date(CurrentClock().Now() - minutes / 1440.0)});
  const long n = count->Step() ? CLng(Field(*count, 0)) : 0;
  count->Reset();
  return n;
}

void SharedSessions::RecordSignIn(const std::string& address, bool failed) const {
  auto db = ado::ConnectServer(uri_);
  const Variant who(FromUtf8(address));
  if (!failed) {
    db->Prepare(u"delete from sign_in_failure where address = $1", {who})->Run();
    return;
  }
  const double now = CurrentClock().Now();
  db->Prepare(u"insert into sign_in_failure (address, at) values ($1, $2)",
              {who, Variant::Date(now)})
      ->Run();
  // Failures older than a day count for nothing any more.
  db->Prepare(u"delete from sign_in_failure where at < $1", {Variant::Date(now - 1)})->Run();
}

void SharedSessions::Drop(const std::string& id) const {
  ado::ConnectServer(uri_)
      ->Prepare(u"delete from web_session where id = $1", {Variant(FromUtf8(id))})
      ->Run();
}

std::optional<std::string> SharedSessions::Rotate(const std::string& id) const {
  const std::string fresh = NewSessionId();
  const long moved = ado::ConnectServer(uri_)
                         ->Prepare(u"update web_session set id = $1 where id = $2",
                                   {Variant(FromUtf8(fresh)), Variant(FromUtf8(id))})
                         ->Run();
  if (moved == 0) return std::nullopt;
  return fresh;
}

}  // namespace ostrakan::engine
