#include "admin/id_gather_step.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "frame/page_parts.h"
#include "gathering/id_run.h"

namespace ostrakan::admin {

IdGatherStep::IdGatherStep() : IdRulePage(u"\\admin\\gather_id_db_ok") {
  Describe<IdGatherStep>([](Describer<IdGatherStep>& m) {
    for (auto [name, member] :
         {std::pair{u"conn", &IdGatherStep::conn}, std::pair{u"connstr", &IdGatherStep::connstr},
          std::pair{u"rs", &IdGatherStep::rs}, std::pair{u"id", &IdGatherStep::id},
          std::pair{u"ID_Start", &IdGatherStep::ID_Start},
          std::pair{u"ID_End", &IdGatherStep::ID_End}, std::pair{u"DB_Num", &IdGatherStep::DB_Num}})
      m.Property(name, member);
  });
}

// The rule's range, bound into the row of the rule (a rule id that is not a number would have
// broken the statement: the same failure is raised without running anything).
void IdGatherStep::WriteRange(const std::u16string& range) {
  if (!IsValidId(id)) throw ScriptError(-2147217900, u"Syntax error in UPDATE statement.");
  ado::Recordset& rule =
      OpenRecordset(rs, u"select * from gather_id_web where id=?", conn, 1, 3, {IdNumber(id)});
  if (!rule.Eof()) {
    rule.SetField(u"range", Variant(range));
    rule.Update();
  }
  CloseAndRelease(rs);
}

void IdGatherStep::FirstBlock() {
  PageHeaderGuard(Admin_Session);
  OpenConnection(*this, u"InitFunction1", DB, connstr, conn);
  CurrentServer().ScriptTimeout = 9999999;
  const Request& request = CurrentRequest();
  id = request.Item(u"ID");
  ID_Start = request.Item(u"ID_Start");
  ID_End = request.Item(u"ID_End");
  DB_Num = request.Item(u"DB_Num");
  if (TextOf(DB_Num).empty()) DB_Num = u"0";
  const gathering::IdRunStep step{TextOf(id), TextOf(ID_Start), TextOf(ID_End), TextOf(DB_Num)};
  Response& out = CurrentResponse();

  if (step.idEnd == step.idStart) {
    WriteRange(gathering::CompletedRange(step));
    CloseAndRelease(conn);
    out.Write(
        AlertAndGoTo(u"采集完成！", u"gather_list_db.asp?ID=" + UrlQuery(step.ruleId).text()));
    // The step goes on for this last ID without a connection: its store fails (logged), so
    // the last ID of a range is fetched but never stored, and no next step is loaded.
  }
  out.Write(gathering::ProgressLines(step));
  gathering::IdExtractor extractor;
  gathering::FactoryPages pages(CurrentServer().factory());
  const gathering::IdStepResult result =
      gathering::GatherIdPage(pages, extractor, Rule(), step.idStart);
  if (result.noData) {
    out.Write(u"<br>第 " + HtmlText(step.idStart) + u" 页找不到相关数据");
  } else {
    gathering::SaveIdRecord(ConnectionOf(conn), result.record);
  }
  ConnectionOf(conn).Close();  // a step that completed the run has no connection left
  conn = Variant::Nothing();
  out.Write(gathering::ContinuationScript(step));
}

}  // namespace ostrakan::admin
