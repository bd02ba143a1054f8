#include "admin/public_site_page.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_blocks.h"
#include "search/public_pages.h"

namespace ostrakan::admin {

PublicSitePage::PublicSitePage(std::u16string context) : SitePage(std::move(context)) {
  Describe<PublicSitePage>([](Describer<PublicSitePage>& m) {
    m.Property(u"conn", &PublicSitePage::conn);
    m.Property(u"connstr", &PublicSitePage::connstr);
  });
}

ado::Connection& OpenRootDatabase(const Variant& db, Variant& connstr, Variant& conn) {
  Server& server = CurrentServer();
  connstr = u"DBQ=" + server.MapPath(u"/" + TextOf(db)) +
            u";DefaultDir=;DRIVER={Microsoft Access Driver (*.mdb)};";
  conn = server.CreateObject(u"ADODB.CONNECTION");
  ado::Connection& connection = ConnectionOf(conn);
  connection.Open(connstr.str());
  return connection;
}

ado::Connection& PublicSitePage::OpenSite() {
  ado::Connection& connection = OpenRootDatabase(DB, connstr, conn);
  CurrentResponse().CacheControl = u"public, max-age=60";
  return connection;
}

void PublicSitePage::WriteTemplate(const char* name,
                                   const std::map<std::u16string, Markup>& parts) {
  const std::filesystem::path file =
      std::filesystem::path(ToUtf8(CurrentServer().MapPath(u"/"))) / "template" / name;
  std::optional<Markup> page = search::FillTemplate(fs::FileSystem::Real(), file, parts);
  if (!page) {
    CurrentResponse().Status = u"500 Internal Server Error";
    CurrentResponse().CacheControl = u"no-store";
    throw ScriptError(53, u"File not found: template/" + FromUtf8(name));
  }
  CurrentResponse().Write(*page);
}

}  // namespace ostrakan::admin
