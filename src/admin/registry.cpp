#include "admin/registry.h"

#include <functional>

#include "admin/account_form.h"
#include "admin/account_save.h"
// Categories and generation
#include "admin/all_category_frames.h"
#include "admin/category_actions.h"
#include "admin/category_batch_add.h"
#include "admin/category_batch_form.h"
#include "admin/category_generator.h"
#include "admin/click_through.h"
#include "admin/database_connection.h"
#include "admin/desktop.h"
#include "admin/front_page.h"
#include "admin/id_gather_start.h"
#include "admin/id_gather_step.h"
#include "admin/id_rule_add.h"
#include "admin/id_rule_add_form.h"
#include "admin/id_rule_delete.h"
#include "admin/id_rule_edit_form.h"
#include "admin/id_rule_edit_save.h"
#include "admin/id_rule_file_writer.h"
#include "admin/id_rule_list.h"
#include "admin/id_rule_trial.h"
#include "admin/inc/md5.h"
#include "admin/inc/verify_picture.h"
#include "admin/keyword_delete.h"
#include "admin/keyword_list.h"
#include "admin/list_gather_start.h"
#include "admin/list_gather_step.h"
#include "admin/list_rule_add.h"
#include "admin/list_rule_add_form.h"
#include "admin/list_rule_delete.h"
#include "admin/list_rule_edit_form.h"
#include "admin/list_rule_edit_save.h"
#include "admin/list_rule_file_writer.h"
#include "admin/list_rule_list.h"
#include "admin/list_rule_trial.h"
#include "admin/public_search.h"
#include "admin/record_add.h"
#include "admin/record_cleanup.h"
#include "admin/record_cleanup_form.h"
#include "admin/record_delete.h"
#include "admin/record_edit_form.h"
#include "admin/record_edit_save.h"
#include "admin/record_entry_form.h"
#include "admin/record_list.h"
#include "admin/record_search.h"
#include "admin/rule_export_download.h"
#include "admin/rule_import.h"
#include "admin/run_journal_page.h"
#include "admin/schedule_page.h"
#include "admin/sign_in.h"
#include "admin/sign_out.h"
#include "admin/site_rebuild_start.h"
#include "admin/sub_category_chooser.h"
#include "admin/sub_category_list.h"
#include "admin/ticked_sub_category_frames.h"
#include "admin/ticked_top_category_frames.h"
#include "admin/top_category_chooser.h"
#include "admin/top_category_list.h"
#include "admin/verify_picture.h"

namespace ostrakan {

namespace {

struct Entry {
  const char16_t* progId;
  std::function<std::shared_ptr<Component>()> make;
};

template <class T>
std::shared_ptr<Component> Make() {
  return std::make_shared<T>();
}

const std::vector<Entry>& Table() {
  static const std::vector<Entry> table = {
      {u"Ostrakan.Class1", Make<admin::VerifyPicture>},             // inc/code.asp
      {u"Ostrakan.Class2", Make<admin::Md5>},                       // inc/md5.asp
      {u"Ostrakan.Class12", Make<admin::Desktop>},                  // desktop.asp
      {u"Ostrakan.Class13", Make<admin::AccountSave>},              // admin_ok.asp
      {u"Ostrakan.Class15", Make<admin::SiteDatabaseConnection>},   // conn.asp
      {u"Ostrakan.Class16", Make<admin::OtherDatabaseConnection>},  // connstr.asp
      {u"Ostrakan.Class18", Make<admin::SignIn>},                   // login.asp
      {u"Ostrakan.Class40", Make<admin::AccountForm>},              // admin.asp
      {u"Ostrakan.Class59", Make<admin::SignOut>},                  // login_out.asp
      {u"Ostrakan.Class64", Make<admin::SignInCheck>},              // login_verify.asp
      // Video records
      {u"Ostrakan.Class17", Make<admin::RecordDelete>},       // db_ok.asp
      {u"Ostrakan.Class19", Make<admin::RecordEntryForm>},    // db_add.asp
      {u"Ostrakan.Class20", Make<admin::RecordEditSave>},     // db_edit_ok.asp
      {u"Ostrakan.Class28", Make<admin::RecordCleanupForm>},  // db_manage.asp
      {u"Ostrakan.Class29", Make<admin::RecordCleanup>},      // db_manage_ok.asp
      {u"Ostrakan.Class30", Make<admin::RecordList>},         // db_list.asp
      {u"Ostrakan.Class39", Make<admin::RecordAdd>},          // db_add_ok.asp
      {u"Ostrakan.Class61", Make<admin::RecordEditForm>},     // db_edit.asp
                                                              // Record search and keywords
      {u"Ostrakan.Class10", Make<admin::KeywordList>},        // keyword_manage.asp
      {u"Ostrakan.Class11", Make<admin::KeywordDelete>},      // keyword_ok.asp
      {u"Ostrakan.Class14", Make<admin::RecordSearch>},       // db_search.asp
      // Categories, generation and the public click-through
      {u"Ostrakan.Class5", Make<admin::TopCategoryList>},           // sort_manage.asp
      {u"Ostrakan.Class6", Make<admin::SubCategoryList>},           // sort_list.asp
      {u"Ostrakan.Class7", Make<admin::CategoryBatchForm>},         // sort_batch_add.asp
      {u"Ostrakan.Class8", Make<admin::CategoryBatchAdd>},          // sort_batch_add_ok.asp
      {u"Ostrakan.Class9", Make<admin::CategoryActions>},           // sort_ok.asp
      {u"Ostrakan.Class21", Make<admin::SiteRebuildStart>},         // create_all.asp
      {u"Ostrakan.Class22", Make<admin::TopCategoryChooser>},       // create_sort.asp
      {u"Ostrakan.Class23", Make<admin::SubCategoryPageWriter>},    // create_sort_two_ok.asp
      {u"Ostrakan.Class26", Make<admin::TopCategoryPageWriter>},    // create_sort_one_ok.asp
      {u"Ostrakan.Class27", Make<admin::TickedTopCategoryFrames>},  // create_sort_one_instruction
      {u"Ostrakan.Class56", Make<admin::SubCategoryChooser>},       // create_sort_list.asp
      {u"Ostrakan.Class57", Make<admin::TickedSubCategoryFrames>},  // create_sort_two_instruction
      {u"Ostrakan.Class58", Make<admin::AllCategoryFrames>},        // create_all_instruction.asp
      {u"Ostrakan.Goto", Make<admin::ClickThrough>},                // /goto.asp (public)
      {u"Ostrakan.FrontPage", Make<admin::FrontPage>},              // /index.asp (public)
      {u"Ostrakan.Search", Make<admin::PublicSearch>},              // /search.asp (public)
      // List-site gathering
      {u"Ostrakan.Class25", Make<admin::ListRuleAddForm>},     // gather_list_web_add.asp
      {u"Ostrakan.Class31", Make<admin::ListRuleAdd>},         // gather_list_web_add_ok.asp
      {u"Ostrakan.Class32", Make<admin::ListRuleEditForm>},    // gather_list_web_edit.asp
      {u"Ostrakan.Class33", Make<admin::ListRuleEditSave>},    // gather_list_web_edit_ok.asp
      {u"Ostrakan.Class34", Make<admin::ListRuleDelete>},      // gather_list_web_ok.asp
      {u"Ostrakan.Class35", Make<admin::ListRuleList>},        // gather_list_web_manage.asp
      {u"Ostrakan.Class36", Make<admin::ListRuleFileWriter>},  // gather_list_web_update.asp
      {u"Ostrakan.Class37", Make<admin::ListRuleTrial>},       // gather_list_web_verify.asp
      {u"Ostrakan.Class54", Make<admin::ListGatherStep>},      // gather_list_db_ok.asp
      {u"Ostrakan.Class66", Make<admin::ListGatherStart>},     // gather_list_db.asp
      {u"Ostrakan.Class170", Make<admin::RunJournalPage>},     // gather_run_list.asp
      {u"Ostrakan.Class171", Make<admin::SchedulePage>},       // gather_schedule.asp
      // Rules as files, from the rule lists
      {u"Ostrakan.Class180", Make<admin::RuleExportDownload>},  // gather_rules_export.asp
      {u"Ostrakan.Class181", Make<admin::RuleImportPreview>},   // gather_rules_import.asp
      {u"Ostrakan.Class182", Make<admin::RuleImportSave>},      // gather_rules_import_ok.asp
      // ID-site gathering rules
      {u"Ostrakan.Class38", Make<admin::IdRuleList>},        // gather_id_web_manage.asp
      {u"Ostrakan.Class41", Make<admin::IdRuleFileWriter>},  // gather_id_web_update.asp
      {u"Ostrakan.Class42", Make<admin::IdRuleDelete>},      // gather_id_web_ok.asp
      {u"Ostrakan.Class43", Make<admin::IdRuleTrial>},       // gather_id_web_verify.asp
      {u"Ostrakan.Class47", Make<admin::IdRuleAdd>},         // gather_id_web_add_ok.asp
      {u"Ostrakan.Class48", Make<admin::IdRuleAddForm>},     // gather_id_web_add.asp
      {u"Ostrakan.Class49", Make<admin::IdRuleEditForm>},    // gather_id_web_edit.asp
      {u"Ostrakan.Class50", Make<admin::IdRuleEditSave>},    // gather_id_web_edit_ok.asp
      {u"Ostrakan.Class52", Make<admin::IdGatherStart>},     // gather_id_db.asp
      {u"Ostrakan.Class53", Make<admin::IdGatherStep>},      // gather_id_db_ok.asp
  };
  return table;
}

}  // namespace

std::shared_ptr<Component> CreateComponent(std::u16string_view progId) {
  for (const auto& e : Table())
    if (IEquals(e.progId, progId)) return e.make();
  return nullptr;
}

std::vector<std::u16string> RegisteredProgIds() {
  std::vector<std::u16string> ids;
  for (const auto& e : Table()) ids.emplace_back(e.progId);
  return ids;
}

}  // namespace ostrakan
