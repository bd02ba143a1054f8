#include "admin/schedule_page.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/request_context.h"

namespace ostrakan::admin {
namespace {

Markup Number(long long n) {
  return HtmlText(CStr(Variant(static_cast<double>(n))));
}

// A whole number from `low`, at most a million; nullopt for anything else.
std::optional<long> Whole(const std::u16string& text, long low) {
  const std::string s = ToUtf8(text);
  if (s.empty() || s.size() > 7 || s.find_first_not_of("0123456789") != std::string::npos)
    return std::nullopt;
  const long n = std::stol(s);
  if (n < low || n > 1000000) return std::nullopt;
  return n;
}

std::u16string Trimmed(const Variant& v) {
  std::u16string s = TextOf(v);
  const size_t from = s.find_first_not_of(u" \t\r\n");
  if (from == std::u16string::npos) return u"";
  return s.substr(from, s.find_last_not_of(u" \t\r\n") - from + 1);
}

std::u16string IntervalText(long seconds) {
  if (seconds % 86400 == 0) return CStr(Variant(seconds / 86400.0)) + u"d";
  if (seconds % 3600 == 0) return CStr(Variant(seconds / 3600.0)) + u"h";
  return CStr(Variant(seconds / 60.0)) + u"m";
}

}  // namespace

SchedulePage::SchedulePage() : DatabasePage(u"\\admin\\gather_schedule") {
  Describe<SchedulePage>([](Describer<SchedulePage>& m) {
    m.Block(u"InitFunction3", &SchedulePage::Act);
    m.Block(u"InitFunction4", &SchedulePage::ListSchedules);
    m.Block(u"InitFunction5", &SchedulePage::WriteForm);
  });
}

std::u16string SchedulePage::ReadForm(gathering::Schedule& s) const {
  const Request& request = CurrentRequest();
  s.kind = Trimmed(request.Form(u"kind")) == u"id" ? u"id" : u"list";
  const auto rule = Whole(Trimmed(request.Form(u"rule_id")), 1);
  if (!rule) return u"规则编号必须是正整数";
  s.ruleId = *rule;
  const std::u16string words = TextOf(request.Form(u"keywords"));
  s.keywords.clear();
  for (size_t at = 0; at <= words.size();) {
    size_t end = words.find(u'\n', at);
    if (end == std::u16string::npos) end = words.size();
    std::u16string w = Trimmed(Variant(words.substr(at, end - at)));
    if (!w.empty()) s.keywords.push_back(std::move(w));
    at = end + 1;
  }
  if (s.kind == u"list") {
    const std::u16string pages = Trimmed(request.Form(u"pages"));
    const size_t dash = pages.find(u'-');
    const auto first = Whole(pages.substr(0, dash), 1);
    const auto last = dash == std::u16string::npos ? first : Whole(pages.substr(dash + 1), 1);
    if (!first || !last || *first > *last) return u"页码范围应写成 1-5";
    s.first = *first;
    s.last = *last;
    s.next = 0;
  } else {
    const auto next = Whole(Trimmed(request.Form(u"next")), 1);
    if (!next) return u"每次采集的编号数必须是正整数";
    s.next = *next;
    s.keywords.clear();
  }
  const std::u16string every = Trimmed(request.Form(u"every")),
                       cron = Trimmed(request.Form(u"cron"));
  if (every.empty() == cron.empty()) return u"请填写间隔或定时（二选一）";
  s.everySeconds = 0;
  s.cron = cron;
  if (!every.empty()) {
    const auto seconds = gathering::ReadInterval(ToUtf8(every));
    if (!seconds) return u"间隔应写成 30m、6h 或 1d，至少一分钟";
    s.everySeconds = *seconds;
  } else if (!gathering::CronProblem(ToUtf8(cron)).empty()) {
    return u"定时应写成“分 时 * * *”，如 30 2 * * *";
  }
  const auto delay = Whole(Trimmed(request.Form(u"delay_ms")), 0);
  if (!delay) return u"间隔毫秒数必须是整数";
  s.pacing.delayMs = static_cast<int>(*delay);
  return u"";
}

void SchedulePage::Act() {
  const Request& request = CurrentRequest();
  const std::u16string action = TextOf(request.QueryString(u"action"));
  const Variant id = request.QueryString(u"id");
  ado::Connection& connection = ConnectionOf(conn);
  const long long number = IsValidId(id) ? static_cast<long long>(CDbl(IdNumber(id))) : 0;
  if (action == u"del") {
    said_ = gathering::RemoveSchedule(connection, number)
                ? Markup(u"已删除定时采集 ") + Number(number)
                : Markup(u"没有这个定时采集");
  } else if (action == u"edit") {
    for (const gathering::Schedule& s : gathering::ListSchedules(connection))
      if (s.id == number) editing_ = s, haveEditing_ = true;
    if (!haveEditing_) said_ = u"没有这个定时采集";
  } else if (action == u"add" || action == u"save") {
    gathering::Schedule s;
    s.id = number;
    if (std::u16string problem = ReadForm(s); !problem.empty()) {
      said_ = HtmlText(problem) + u"，没有保存。";
      editing_ = s, haveEditing_ = action == u"save", typed_ = true;
    } else if (action == u"add") {
      const auto added = gathering::AddSchedule(connection, s);
      said_ = added ? Markup(u"已添加定时采集 ") + Number(*added) : Markup(u"没有这个采集规则");
    } else {
      said_ = gathering::UpdateSchedule(connection, s) ? Markup(u"已保存定时采集 ") + Number(s.id)
                                                       : Markup(u"没有这个定时采集或采集规则");
    }
  }
}

void SchedulePage::ListSchedules() {
  Response& out = CurrentResponse();
  if (!said_.text().empty()) out.Write(u"<p class=\"hint\" id=\"said\">" + said_ + u"</p>");
  const auto schedules = gathering::ListSchedules(ConnectionOf(conn));
  if (schedules.empty()) {
    out.Write(Markup(u"<p class=\"hint\">还没有定时采集。</p>"));
    return;
  }
  out.Write(
      Markup(u"<table class=\"list\" id=\"schedules\"><tr><th>编号</th><th>规则</th>"
             u"<th>关键词/范围</th><th>何时</th><th>操作</th></tr>"));
  for (const gathering::Schedule& s : schedules) {
    Markup what;
    if (s.kind == u"id") {
      what = u"其后 " + Number(s.next) + u" 个编号";
    } else {
      for (const auto& w : s.keywords) what = what + HtmlText(w) + u" ";
      what = what + u"第 " + Number(s.first) + u"-" + Number(s.last) + u" 页";
    }
    const Markup when = s.cron.empty() ? Markup(u"每 ") + HtmlText(IntervalText(s.everySeconds))
                                       : Markup(u"定时 ") + HtmlText(s.cron);
    const Markup id = UrlQuery(CStr(Variant(static_cast<double>(s.id))));
    out.Write(u"<tr><td>" + Number(s.id) + u"</td><td>" +
              (s.kind == u"id" ? Markup(u"编号采集 ") : Markup(u"列表采集 ")) + Number(s.ruleId) +
              u"</td><td>" + what + u"</td><td>" + when +
              u"</td><td><a href=\"gather_schedule.asp?action=edit&id=" + id +
              u"\">修改</a> <a href=\"gather_schedule.asp?action=del&id=" + id +
              u"\" onclick=\"return confirm('确定要删除这个定时采集吗？')\">删除</a></td></tr>");
  }
  out.Write(Markup(u"</table>"));
}

void SchedulePage::WriteForm() {
  const gathering::Schedule& s = editing_;
  const bool edit = haveEditing_ && s.id > 0;
  std::u16string words;
  for (const auto& w : s.keywords) words += w + u"\r\n";
  // A refused form comes back as it was typed.
  const Request& request = CurrentRequest();
  auto typed = [&](const char16_t* name, const std::u16string& otherwise) {
    return typed_ ? TextOf(request.Form(name)) : otherwise;
  };
  words = typed(u"keywords", words);
  const Markup action =
      edit ? u"save&id=" + UrlQuery(CStr(Variant(static_cast<double>(s.id)))) : Markup(u"add");
  auto field = [&](const char16_t* name, const std::u16string& v) {
    return HtmlAttr(typed(name, haveEditing_ ? v : u""));
  };
  CurrentResponse().Write(
      u"<h3>" + (edit ? Markup(u"修改定时采集") : Markup(u"添加定时采集")) +
      u"</h3><form accept-charset=\"gb18030\" method=\"post\" name=\"schedule\" "
      u"action=\"gather_schedule.asp?action=" +
      action +
      u"\"><table class=\"form\"><tr><th>规则</th><td><select name=\"kind\"><option "
      u"value=\"list\">列表采集</option><option value=\"id\"" +
      (s.kind == u"id" ? Markup(u" selected") : Markup(u"")) +
      u">编号采集</option></select> 编号 <input type=\"text\" name=\"rule_id\" size=\"6\" "
      u"value=\"" +
      field(u"rule_id", s.ruleId ? CStr(Variant(static_cast<double>(s.ruleId))) : u"") +
      u"\"></td></tr><tr><th>关键词（每行一个）</th><td><textarea name=\"keywords\" rows=\"3\" "
      u"cols=\"30\">" +
      HtmlText(words) +
      u"</textarea></td></tr><tr><th>页码（列表采集）</th><td><input type=\"text\" "
      u"name=\"pages\" size=\"10\" value=\"" +
      field(u"pages", s.kind == u"list" && s.last
                          ? CStr(Variant(static_cast<double>(s.first))) + u"-" +
                                CStr(Variant(static_cast<double>(s.last)))
                          : u"1-1") +
      u"\"></td></tr><tr><th>每次编号数（编号采集）</th><td><input type=\"text\" "
      u"name=\"next\" size=\"10\" value=\"" +
      field(u"next", s.next ? CStr(Variant(static_cast<double>(s.next))) : u"") +
      u"\"></td></tr><tr><th>间隔</th><td><input type=\"text\" name=\"every\" size=\"10\" "
      u"value=\"" +
      field(u"every", s.everySeconds ? IntervalText(s.everySeconds) : u"") +
      u"\"> 如 6h、1d；或定时 <input type=\"text\" name=\"cron\" size=\"14\" value=\"" +
      field(u"cron", s.cron) +
      u"\"> 如 30 2 * * *</td></tr><tr><th>两次抓取间隔（毫秒）</th><td><input type=\"text\" "
      u"name=\"delay_ms\" size=\"10\" value=\"" +
      HtmlAttr(typed(u"delay_ms", CStr(Variant(static_cast<double>(s.pacing.delayMs))))) +
      u"\"></td></tr></table><input type=\"submit\" value=\"保 存\" class=\"button\"></form>");
}

}  // namespace ostrakan::admin
