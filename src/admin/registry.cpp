#include "admin/registry.h"

#include <functional>

#include "admin/admin.h"
#include "admin/admin_ok.h"
#include "admin/conn.h"
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
#include "admin/inc/code.h"
#include "admin/inc/md5.h"
#include "admin/keyword_manage.h"
#include "admin/keyword_ok.h"
#include "admin/login.h"
#include "admin/login_out.h"
#include "admin/login_verify.h"

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
