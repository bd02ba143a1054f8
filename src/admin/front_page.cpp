#include "admin/front_page.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "search/public_pages.h"

namespace ostrakan::admin {

FrontPage::FrontPage() : PublicSitePage(u"\\index") {
  Describe<FrontPage>(
      [](Describer<FrontPage>& m) { m.Block(u"InitFunction2", &FrontPage::WritePage); });
}

void FrontPage::WritePage() {
  ado::Connection& connection = OpenSite();
  std::map<std::u16string, Markup> parts{
      {u"title", HtmlText(TextOf(WebSite_Title))},
      {u"keyword", {}},
      {u"sort_list", search::TopCategoryLinks(connection)},
      {u"db_list", search::NewestRecords(connection, 20)},
      {u"keyword_list", search::HotKeywords(connection, 30)},
  };
  CloseAndRelease(conn);
  WriteTemplate("index.asp", parts);
}

}  // namespace ostrakan::admin
