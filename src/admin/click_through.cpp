#include "admin/click_through.h"

#include "admin/public_site_page.h"
#include "frame/data_access.h"
#include "frame/page_blocks.h"
#include "generation/click_through.h"

namespace ostrakan::admin {

namespace {

[[noreturn]] void NotFound(const Markup& message) {
  CurrentResponse().Status = u"404 Not Found";
  WriteAndEnd(message);
}

}  // namespace

ClickThrough::ClickThrough() : SitePage(u"\\goto") {
  Describe<ClickThrough>([](Describer<ClickThrough>& m) {
    m.Property(u"conn", &ClickThrough::conn);
    m.Property(u"connstr", &ClickThrough::connstr);
    m.Property(u"id", &ClickThrough::id);
    m.Block(u"InitFunction2", &ClickThrough::CountClickAndRedirect);
  });
}

void ClickThrough::CountClickAndRedirect() {
  if (!IsValidId(id)) NotFound(u"非法ID参数");
  ado::Connection& connection = OpenRootDatabase(DB, connstr, conn);
  std::optional<std::u16string> address = generation::CountClick(connection, id);
  CloseAndRelease(conn);
  if (!address) NotFound(u"该记录不存在或错误！");
  CurrentResponse().Redirect(*address);
  EndResponse();
}

}  // namespace ostrakan::admin
