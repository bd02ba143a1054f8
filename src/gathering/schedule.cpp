#include "gathering/schedule.h"
#include "gathering/journal_values.h"

#include <ctime>

#include "gathering/rule_run.h"
#include "gathering/work_queue.h"
#include "platform/ado/recordset.h"
#include "platform/ado/write_transaction.h"

namespace ostrakan::gathering {
namespace {

// The cron line's minute and hour: -1 for "*".
bool ReadCron(std::string_view cron, int& minute, int& hour) {
  std::vector<std::string> fields;
  for (size_t at = 0; at < cron.size();) {
    const size_t end = std::min(cron.find(' ', at), cron.size());
    if (end > at) fields.emplace_back(cron.substr(at, end - at));
    at = end + 1;
  }
  if (fields.size() != 5 || fields[2] != "*" || fields[3] != "*" || fields[4] != "*") return false;
  auto field = [](const std::string& f, int top, int& out) {
    if (f == "*") return out = -1, true;
    if (f.empty() || f.size() > 2 || f.find_first_not_of("0123456789") != std::string::npos)
      return false;
    out = std::stoi(f);
    return out <= top;
  };
  return field(fields[0], 59, minute) && field(fields[1], 23, hour);
}

// The last number of the rule's gathered range "FIRST - LAST"; 0 when it has none.
long LastGathered(ado::Connection& conn, long long ruleId) {
  auto rs = conn.Execute(u"select \"range\" from gather_id_web where id = ?", {Number(ruleId)});
  std::u16string range = rs->Eof() ? u"" : TextOf(rs->FieldAt(0));
  rs->Close();
  const size_t dash = range.rfind(u'-');
  const std::string last = ToUtf8(range.substr(dash == std::u16string::npos ? 0 : dash + 1));
  const size_t from = last.find_first_not_of(' ');
  if (from == std::string::npos) return 0;
  const std::string digits = last.substr(from, last.find_last_not_of(' ') - from + 1);
  if (digits.empty() || digits.size() > 12 ||
      digits.find_first_not_of("0123456789") != std::string::npos)
    return 0;
  return std::stol(digits);
}

std::u16string JoinKeywords(const std::vector<std::u16string>& words) {
  std::u16string text;
  for (const auto& w : words) text += (text.empty() ? u"" : u"\n") + w;
  return text;
}

std::vector<std::u16string> SplitKeywords(const std::u16string& text) {
  std::vector<std::u16string> words;
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find(u'\n', at), text.size());
    words.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return words;
}

}  // namespace

std::optional<long> ReadInterval(std::string_view text) {
  if (text.empty() || text.size() > 9) return std::nullopt;
  long unit = 1;
  switch (text.back()) {
    case 'm':
      unit = 60;
      break;
    case 'h':
      unit = 3600;
      break;
    case 'd':
      unit = 86400;
      break;
    case 's':
      unit = 1;
      break;
    default:
      unit = 0;
  }
  std::string_view digits = unit ? text.substr(0, text.size() - 1) : text;
  if (!unit) unit = 1;
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos)
    return std::nullopt;
  const long seconds = std::stol(std::string(digits)) * unit;
  if (seconds < 60) return std::nullopt;
  return seconds;
}

std::string CronProblem(std::string_view cron) {
  int minute, hour;
  if (ReadCron(cron, minute, hour)) return "";
  return "--cron takes \"M H * * *\": a minute (0-59) and an hour (0-23), each a number or *";
}

long long NextCronTime(std::string_view cron, long long afterMs) {
  int minute = 0, hour = 0;
  ReadCron(cron, minute, hour);
  std::time_t t = static_cast<std::time_t>(afterMs / 1000 / 60 * 60) + 60;  // next whole minute
  for (int i = 0; i < 2 * 24 * 60; ++i, t += 60) {
    std::tm local{};
    localtime_r(&t, &local);
    if ((minute < 0 || local.tm_min == minute) && (hour < 0 || local.tm_hour == hour))
      return static_cast<long long>(t) * 1000;
  }
  return afterMs + 86400000LL;  // not reached for a line ReadCron accepts
}

std::optional<long long> AddSchedule(ado::Connection& conn, const Schedule& s) {
  EnsureRunJournal(conn);
  if (!LoadRule(conn, s.kind, s.ruleId)) return std::nullopt;
  const std::u16string tag = u"new " + FromUtf8(NewOwnerName());
  ado::WriteTransaction transaction(conn);
  conn.Execute(
      u"insert into gather_schedule (kind, rule_id, keywords, first, last, next_count, "
      u"every_seconds, cron, due_at, delay_ms, retries, retry_pause_ms) "
      u"values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
      {Variant(s.kind), Number(s.ruleId), Variant(tag), Number(s.first), Number(s.last),
       Number(s.next), Number(s.everySeconds), Variant(s.cron), Number(WallMs()),
       Number(s.pacing.delayMs), Number(s.pacing.retries), Number(s.pacing.retryPauseMs)});
  auto rs = conn.Execute(u"select id from gather_schedule where keywords = ?", {Variant(tag)});
  const long long id = Whole(rs->FieldAt(0));
  rs->Close();
  conn.Execute(u"update gather_schedule set keywords = ? where id = ?",
               {Variant(JoinKeywords(s.keywords)), Number(id)});
  transaction.Commit();
  return id;
}

std::vector<Schedule> ListSchedules(ado::Connection& conn) {
  EnsureRunJournal(conn);
  std::vector<Schedule> list;
  auto rs = conn.Execute(u"select * from gather_schedule order by id");
  for (; !rs->Eof(); rs->MoveNext()) {
    Schedule s;
    s.id = Whole(rs->Field(u"id"));
    s.kind = TextOf(rs->Field(u"kind"));
    s.ruleId = Whole(rs->Field(u"rule_id"));
    const std::u16string words = TextOf(rs->Field(u"keywords"));
    if (!words.empty()) s.keywords = SplitKeywords(words);
    s.first = static_cast<long>(Whole(rs->Field(u"first")));
    s.last = static_cast<long>(Whole(rs->Field(u"last")));
    s.next = static_cast<long>(Whole(rs->Field(u"next_count")));
    s.everySeconds = static_cast<long>(Whole(rs->Field(u"every_seconds")));
    s.cron = TextOf(rs->Field(u"cron"));
    s.dueAtMs = Whole(rs->Field(u"due_at"));
    s.pacing = {static_cast<int>(Whole(rs->Field(u"delay_ms"))),
                static_cast<int>(Whole(rs->Field(u"retries"))),
                static_cast<int>(Whole(rs->Field(u"retry_pause_ms")))};
    list.push_back(std::move(s));
  }
  rs->Close();
  return list;
}

bool UpdateSchedule(ado::Connection& conn, const Schedule& s) {
  EnsureRunJournal(conn);
  if (!LoadRule(conn, s.kind, s.ruleId)) return false;
  conn.Execute(
      u"update gather_schedule set kind = ?, rule_id = ?, keywords = ?, first = ?, last = ?, "
      u"next_count = ?, every_seconds = ?, cron = ?, delay_ms = ? where id = ?",
      {Variant(s.kind), Number(s.ruleId), Variant(JoinKeywords(s.keywords)), Number(s.first),
       Number(s.last), Number(s.next), Number(s.everySeconds), Variant(s.cron),
       Number(s.pacing.delayMs), Number(s.id)});
  return conn.recordsAffected() == 1;
}

bool RemoveSchedule(ado::Connection& conn, long long id) {
  EnsureRunJournal(conn);
  conn.Execute(u"delete from gather_schedule where id = ?", {Number(id)});
  return conn.recordsAffected() == 1;
}

long QueueDueSchedules(ado::Connection& conn, long long nowMs) {
  long queued = 0;
  for (const Schedule& s : ListSchedules(conn)) {
    if (s.dueAtMs > nowMs) continue;
    long long nextDue =
        s.cron.empty() ? s.dueAtMs + s.everySeconds * 1000LL : NextCronTime(ToUtf8(s.cron), nowMs);
    if (nextDue <= nowMs) nextDue = s.cron.empty() ? nowMs + s.everySeconds * 1000LL : nextDue;
    ado::WriteTransaction transaction(conn);
    conn.Execute(u"update gather_schedule set due_at = ? where id = ? and due_at = ?",
                 {Number(nextDue), Number(s.id), Number(s.dueAtMs)});
    if (conn.recordsAffected() != 1) continue;  // another worker queued this due time
    RunRequest request;
    request.kind = s.kind;
    request.ruleId = s.ruleId;
    request.pacing = s.pacing;
    request.rangeGiven = true;
    if (s.kind == u"id") {
      request.first = LastGathered(conn, s.ruleId) + 1;
      request.last = request.first + s.next - 1;
      queued += QueueRule(conn, request) ? 1 : 0;
    } else {
      request.first = s.first;
      request.last = s.last;
      std::vector<std::optional<std::u16string>> words(s.keywords.begin(), s.keywords.end());
      if (words.empty()) words.push_back(std::nullopt);
      for (const auto& w : words) {
        request.keyword = w;
        queued += QueueRule(conn, request) ? 1 : 0;
      }
    }
    transaction.Commit();
  }
  return queued;
}

}  // namespace ostrakan::gathering
