#include "admin/registry.h"

#include <functional>

#include "admin/admin.h"
#include "admin/admin_ok.h"
#include "admin/conn.h"
#include "admin/db_list.h"
#include "admin/desktop.h"
#include "admin/inc/code.h"
#include "admin/inc/md5.h"
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
      {u"Ostrakan.Class30", Make<admin::DbList>},  // db_list.asp
                                                   // Record search and keywords
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
