// The base of the public pages at the site root (index.asp, search.asp): the site settings,
// a connection to the site's database, the site's templates, and the caching they allow.
#pragma once

#include <filesystem>
#include <map>

#include "frame/site_page.h"
#include "platform/ado/connection.h"

namespace ostrakan::admin {

// Opens the database that the setting `db` names, its path taken from the site root (the pages
// at the root cannot take it from their own folder), into `conn`, recording `connstr`.
ado::Connection& OpenRootDatabase(const Variant& db, Variant& connstr, Variant& conn);

class PublicSitePage : public SitePage {
 public:
  Variant conn, connstr;

 protected:
  explicit PublicSitePage(std::u16string context);
  // Opens the site's database (its path taken from the site root) and marks the answer as one
  // that browsers and proxies may keep for a minute.
  ado::Connection& OpenSite();
  // Writes template/<name> filled with `parts`, or a one-line message when it cannot be read.
  void WriteTemplate(const char* name, const std::map<std::u16string, Markup>& parts);
};

}  // namespace ostrakan::admin
