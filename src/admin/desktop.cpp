#include "admin/desktop.h"

#include <cmath>

#include "admin/desktop_summary.h"

#include "frame/data_access.h"
#include "frame/page_blocks.h"
#include "frame/request_context.h"
#include "gathering/rule_health.h"
#include "gathering/run_list.h"
#include "platform/clock.h"

namespace ostrakan::admin {
namespace {

// The database file that the setting DB names, mapped from the page's folder as
// OpenConnection maps it. Kept per thread for the views that follow: the same site root, page
// and setting map to the same file.
const std::string& DatabaseFileOf(const Variant& db) {
  struct Mapped {
    std::string root;
    std::u16string page, setting;
    std::string file;
  };
  thread_local Mapped last;
  const Server& server = CurrentServer();
  std::u16string setting = TextOf(db);
  if (last.file.empty() || setting != last.setting || server.pagePath() != last.page ||
      server.siteRoot().native() != last.root) {
    std::string file = ToUtf8(server.MapPath(u"../" + setting));
    last = {server.siteRoot().native(), server.pagePath(), std::move(setting), std::move(file)};
  }
  return last.file;
}

}  // namespace

Desktop::Desktop() : GuardedPage(u"\\admin\\desktop") {
  Describe<Desktop>([](Describer<Desktop>& m) {
    m.EmptyBlock(u"InitFunction2");
    m.Block(u"InitFunction3", &Desktop::WriteSignedInName);
    m.Block(u"InitFunction4", &Desktop::WriteLastSignInAddress);
    m.Block(u"InitFunction5", &Desktop::WriteLastSignInTime);
    m.Block(u"InitFunction6", &Desktop::WriteGathering);
    m.Property(u"conn", &Desktop::conn);
    m.Property(u"connstr", &Desktop::connstr);
  });
}

void Desktop::WriteSignedInName() {
  WriteSessionValue(TextOf(Admin_Session));
}

void Desktop::WriteLastSignInAddress() {
  WriteSessionValue(u"login_ip");
}

void Desktop::WriteLastSignInTime() {
  WriteSessionValue(u"login_time");
}

void Desktop::WriteGathering() {
  // Read once a second at most while the database is not written to (desktop_summary.h).
  const std::shared_ptr<const DesktopSummary> kept =
      SummaryOf(DatabaseFileOf(DB), std::floor(CurrentClock().Now()), [&] {
        OpenConnection(*this, u"InitFunction6", DB, connstr, conn);
        ado::Connection& connection = ConnectionOf(conn);
        DesktopSummary read{gathering::RunsOfToday(connection), gathering::MarkedRules(connection)};
        CloseAndRelease(conn);
        return read;
      });
  const DesktopSummary& summary = *kept;
  const gathering::TodaysRuns& today = summary.today;
  auto number = [](long long n) { return HtmlText(CStr(Variant(static_cast<double>(n)))); };
  Response& out = CurrentResponse();
  out.Write(u"<tr><th>今日采集</th><td id=\"gather-today\"><a href=\"gather_run_list.asp\">" +
            number(today.runs) + u" 个任务</a>，新增记录 " + number(today.inserted) +
            u" 条</td></tr>");
  for (const gathering::MarkedRule& rule : summary.rules)
    out.Write(u"<tr><th>需要注意的规则</th><td class=\"warn\">" +
              (rule.kind == u"id" ? Markup(u"编号采集 ") : Markup(u"列表采集 ")) +
              number(rule.ruleId) + u" " + HtmlText(rule.name) + u"：" +
              Markup(gathering::kRuleMayBeBroken) + u"（" + HtmlText(rule.warning.since) + u"，" +
              HtmlText(rule.warning.sample) + u"）</td></tr>");
}

}  // namespace ostrakan::admin
