#include "admin/run_journal_page.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/request_context.h"
#include "gathering/rule_health.h"
#include "gathering/run_list.h"
#include "gathering/work_queue.h"

namespace ostrakan::admin {
namespace {

constexpr long kRunsShown = 200;

Markup StateName(const gathering::RunRow& row) {
  if (row.state == gathering::kRunQueued) return u"等待中";
  if (row.state == gathering::kRunRunning) return u"进行中";
  if (row.state == gathering::kRunStopped) return u"已停止";
  return row.run.counts.failed > 0 ? Markup(u"完成（有失败）") : Markup(u"完成");
}

Markup Number(long n) {
  return HtmlText(CStr(Variant(static_cast<double>(n))));
}

}  // namespace

RunJournalPage::RunJournalPage() : DatabasePage(u"\\admin\\gather_run_list") {
  Describe<RunJournalPage>([](Describer<RunJournalPage>& m) {
    m.Block(u"InitFunction3", &RunJournalPage::Act);
    m.Block(u"InitFunction4", &RunJournalPage::WriteRefresh);
    m.Block(u"InitFunction5", &RunJournalPage::ListRuns);
  });
}

void RunJournalPage::Act() {
  const Request& request = CurrentRequest();
  const Variant action = request.QueryString(u"action"), id = request.QueryString(u"id");
  if (Equals(action, Variant(u"")) || !IsValidId(id)) return;
  ado::Connection& connection = ConnectionOf(conn);
  gathering::EnsureRunJournal(connection);
  const long long runId = static_cast<long long>(CDbl(IdNumber(id)));
  if (Equals(action, Variant(u"stop"))) {
    done_ = gathering::StopRun(connection, runId) ? Markup(u"已停止采集任务 ") + Number(runId)
                                                  : Markup(u"这个采集任务已经结束");
  } else if (Equals(action, Variant(u"requeue"))) {
    const long n = gathering::RequeueFailed(connection, runId);
    done_ = n > 0 ? Markup(u"已重新排队失败的页面：") + Number(n)
                  : Markup(u"这个采集任务没有失败的页面");
  }
}

void RunJournalPage::WriteRefresh() {
  for (const gathering::RunRow& row : gathering::RecentRuns(ConnectionOf(conn), kRunsShown))
    if (row.state == gathering::kRunQueued || row.state == gathering::kRunRunning) {
      CurrentResponse().Write(Markup(u"<meta http-equiv=\"refresh\" content=\"5\">"));
      return;
    }
}

void RunJournalPage::ListRuns() {
  Response& out = CurrentResponse();
  if (!done_.text().empty()) out.Write(u"<p class=\"hint\" id=\"done\">" + done_ + u"</p>");
  const auto rows = gathering::RecentRuns(ConnectionOf(conn), kRunsShown);
  if (rows.empty()) {
    out.Write(Markup(u"<p class=\"hint\">还没有采集记录。</p>"));
    return;
  }
  out.Write(
      Markup(u"<table class=\"list\" id=\"runs\"><tr><th>编号</th><th>规则</th><th>关键词/范围</th>"
             u"<th>状态</th><th>进度</th><th>新增</th><th>更新</th><th>无结果</th><th>失败</th>"
             u"<th>未匹配</th><th>开始</th><th>结束</th><th>操作</th></tr>"));
  for (const gathering::RunRow& row : rows) {
    const gathering::JournalRun& r = row.run;
    const bool ids = r.kind == u"id";
    Markup rule = (ids ? Markup(u"编号 ") : Markup(u"列表 ")) + Number(static_cast<long>(r.ruleId));
    if (!row.ruleName.empty()) rule = rule + u" " + HtmlText(row.ruleName);
    if (row.ruleMayBeBroken)
      rule = rule + u" <span class=\"warn\">" + Markup(gathering::kRuleMayBeBroken) + u"</span>";
    const Markup what =
        ids ? Number(r.first) + u" - " + Number(r.last)
            : HtmlText(r.keyword) + u"（第 " + Number(r.first) + u"-" + Number(r.last) + u" 页）";
    Markup actions;
    const Markup idQuery = UrlQuery(CStr(Variant(static_cast<double>(r.id))));
    if (row.state == gathering::kRunQueued || row.state == gathering::kRunRunning)
      actions = u"<a href=\"gather_run_list.asp?action=stop&id=" + idQuery + u"\">停止</a> ";
    if (row.waiting > 0)
      actions = actions + u"<a href=\"gather_run_list.asp?action=requeue&id=" + idQuery +
                u"\">重新采集失败页面</a>";
    const auto& c = r.counts;
    out.Write(u"<tr><td>" + Number(static_cast<long>(r.id)) + u"</td><td>" + rule + u"</td><td>" +
              what + u"</td><td>" + StateName(row) + u"</td><td>" + Number(c.pages) + u"/" +
              Number(row.total) + u"</td><td>" + Number(c.inserted) + u"</td><td>" +
              Number(c.updated) + u"</td><td>" + Number(c.noResults) + u"</td><td>" +
              Number(c.failed) + u"</td><td>" + Number(c.unmatched) + u"</td><td>" +
              HtmlText(row.started) + u"</td><td>" + HtmlText(row.finished) + u"</td><td>" +
              actions + u"</td></tr>");
  }
  out.Write(Markup(u"</table>"));
}

}  // namespace ostrakan::admin
