#include "admin/registry.h"

#include <functional>

#include "admin/admin.h"
#include "admin/admin_ok.h"
// Categories and generation
#include "admin/category_generator.h"
#include "admin/conn.h"
#include "admin/create_all.h"
#include "admin/create_all_instruction.h"
#include "admin/create_sort.h"
#include "admin/create_sort_list.h"
#include "admin/create_sort_one_instruction.h"
#include "admin/create_sort_two_instruction.h"
#include "admin/db_add.h"
#include "admin/db_add_ok.h"
#include "admin/db_edit.h"
#include "admin/db_edit_ok.h"
#include "admin/db_list.h"
#include "admin/db_manage.h"
#include "admin/db_manage_ok.h"
#include "admin/db_ok.h"
#include "admin/db_search.h"
#include "admin/desktop.h"
#include "admin/gather_id_db.h"
#include "admin/gather_id_db_ok.h"
#include "admin/gather_id_web_add.h"
#include "admin/gather_id_web_add_ok.h"
#include "admin/gather_id_web_edit.h"
#include "admin/gather_id_web_edit_ok.h"
#include "admin/gather_id_web_manage.h"
#include "admin/gather_id_web_ok.h"
#include "admin/gather_id_web_update.h"
#include "admin/gather_id_web_verify.h"
#include "admin/gather_list_db.h"
#include "admin/gather_list_db_ok.h"
#include "admin/gather_list_web_add.h"
#include "admin/gather_list_web_add_ok.h"
#include "admin/gather_list_web_edit.h"
#include "admin/gather_list_web_edit_ok.h"
#include "admin/gather_list_web_manage.h"
#include "admin/gather_list_web_ok.h"
#include "admin/gather_list_web_update.h"
#include "admin/gather_list_web_verify.h"
#include "admin/goto.h"
#include "admin/inc/code.h"
#include "admin/inc/md5.h"
#include "admin/keyword_manage.h"
#include "admin/keyword_ok.h"
#include "admin/login.h"
#include "admin/login_out.h"
#include "admin/login_verify.h"
#include "admin/sort_batch_add.h"
#include "admin/sort_batch_add_ok.h"
#include "admin/sort_list.h"
#include "admin/sort_manage.h"
#include "admin/sort_ok.h"

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
      {u"Ostrakan.Class1", Make<admin::Code>},          // inc/code.asp
      {u"Ostrakan.Class2", Make<admin::Md5>},           // inc/md5.asp
      {u"Ostrakan.Class12", Make<admin::Desktop>},      // desktop.asp
      {u"Ostrakan.Class13", Make<admin::AdminOk>},      // admin_ok.asp
      {u"Ostrakan.Class15", Make<admin::Conn>},         // conn.asp
      {u"Ostrakan.Class16", Make<admin::Connstr>},      // connstr.asp
      {u"Ostrakan.Class18", Make<admin::Login>},        // login.asp
      {u"Ostrakan.Class40", Make<admin::Admin>},        // admin.asp
      {u"Ostrakan.Class59", Make<admin::LoginOut>},     // login_out.asp
      {u"Ostrakan.Class64", Make<admin::LoginVerify>},  // login_verify.asp
      // Video records
      {u"Ostrakan.Class17", Make<admin::DbOk>},           // db_ok.asp
      {u"Ostrakan.Class19", Make<admin::DbAdd>},          // db_add.asp
      {u"Ostrakan.Class20", Make<admin::DbEditOk>},       // db_edit_ok.asp
      {u"Ostrakan.Class28", Make<admin::DbManage>},       // db_manage.asp
      {u"Ostrakan.Class29", Make<admin::DbManageOk>},     // db_manage_ok.asp
      {u"Ostrakan.Class30", Make<admin::DbList>},         // db_list.asp
      {u"Ostrakan.Class39", Make<admin::DbAddOk>},        // db_add_ok.asp
      {u"Ostrakan.Class61", Make<admin::DbEdit>},         // db_edit.asp
                                                          // Record search and keywords
      {u"Ostrakan.Class10", Make<admin::KeywordManage>},  // keyword_manage.asp
      {u"Ostrakan.Class11", Make<admin::KeywordOk>},      // keyword_ok.asp
      {u"Ostrakan.Class14", Make<admin::DbSearch>},       // db_search.asp
      // Categories, generation and the public click-through
      {u"Ostrakan.Class5", Make<admin::SortManage>},                 // sort_manage.asp
      {u"Ostrakan.Class6", Make<admin::SortList>},                   // sort_list.asp
      {u"Ostrakan.Class7", Make<admin::SortBatchAdd>},               // sort_batch_add.asp
      {u"Ostrakan.Class8", Make<admin::SortBatchAddOk>},             // sort_batch_add_ok.asp
      {u"Ostrakan.Class9", Make<admin::SortOk>},                     // sort_ok.asp
      {u"Ostrakan.Class21", Make<admin::CreateAll>},                 // create_all.asp
      {u"Ostrakan.Class22", Make<admin::CreateSort>},                // create_sort.asp
      {u"Ostrakan.Class23", Make<admin::CreateSortTwoOk>},           // create_sort_two_ok.asp
      {u"Ostrakan.Class26", Make<admin::CreateSortOneOk>},           // create_sort_one_ok.asp
      {u"Ostrakan.Class27", Make<admin::CreateSortOneInstruction>},  // create_sort_one_instruction
      {u"Ostrakan.Class56", Make<admin::CreateSortList>},            // create_sort_list.asp
      {u"Ostrakan.Class57", Make<admin::CreateSortTwoInstruction>},  // create_sort_two_instruction
      {u"Ostrakan.Class58", Make<admin::CreateAllInstruction>},      // create_all_instruction.asp
      {u"Ostrakan.Goto", Make<admin::Goto>},                         // /goto.asp (public)
      // List-site gathering
      {u"Ostrakan.Class25", Make<admin::GatherListWebAdd>},     // gather_list_web_add.asp
      {u"Ostrakan.Class31", Make<admin::GatherListWebAddOk>},   // gather_list_web_add_ok.asp
      {u"Ostrakan.Class32", Make<admin::GatherListWebEdit>},    // gather_list_web_edit.asp
      {u"Ostrakan.Class33", Make<admin::GatherListWebEditOk>},  // gather_list_web_edit_ok.asp
      {u"Ostrakan.Class34", Make<admin::GatherListWebOk>},      // gather_list_web_ok.asp
      {u"Ostrakan.Class35", Make<admin::GatherListWebManage>},  // gather_list_web_manage.asp
      {u"Ostrakan.Class36", Make<admin::GatherListWebUpdate>},  // gather_list_web_update.asp
      {u"Ostrakan.Class37", Make<admin::GatherListWebVerify>},  // gather_list_web_verify.asp
      {u"Ostrakan.Class54", Make<admin::GatherListDbOk>},       // gather_list_db_ok.asp
      {u"Ostrakan.Class66", Make<admin::GatherListDb>},         // gather_list_db.asp
      // ID-site gathering rules
      {u"Ostrakan.Class38", Make<admin::GatherIdWebManage>},  // gather_id_web_manage.asp
      {u"Ostrakan.Class41", Make<admin::GatherIdWebUpdate>},  // gather_id_web_update.asp
      {u"Ostrakan.Class42", Make<admin::GatherIdWebOk>},      // gather_id_web_ok.asp
      {u"Ostrakan.Class43", Make<admin::GatherIdWebVerify>},  // gather_id_web_verify.asp
      {u"Ostrakan.Class47", Make<admin::GatherIdWebAddOk>},   // gather_id_web_add_ok.asp
      {u"Ostrakan.Class48", Make<admin::GatherIdWebAdd>},     // gather_id_web_add.asp
      {u"Ostrakan.Class49", Make<admin::GatherIdWebEdit>},    // gather_id_web_edit.asp
      {u"Ostrakan.Class50", Make<admin::GatherIdWebEditOk>},  // gather_id_web_edit_ok.asp
      {u"Ostrakan.Class52", Make<admin::GatherIdDb>},         // gather_id_db.asp
      {u"Ostrakan.Class53", Make<admin::GatherIdDbOk>},       // gather_id_db_ok.asp
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
