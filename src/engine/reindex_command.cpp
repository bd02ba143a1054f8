#include "engine/reindex_command.h"

#include <chrono>
#include <cstdio>
#include <ostream>

#include "engine/commands.h"
#include "engine/site_setup.h"
#include "platform/ado/connection.h"
#include "search/record_index.h"

namespace ostrakan::engine {

int RunReindex(const ReindexOptions& o, std::ostream& out, std::ostream& err) {
  if (std::string problem = CheckSite(o.site); !problem.empty()) {
    err << "ostrakan reindex: " << problem << "\n";
    return 1;
  }
  const auto start = std::chrono::steady_clock::now();
  long records = 0;
  try {
    const SiteSetup setup = LoadSiteSetup(o.site);
    auto conn = std::make_shared<ado::Connection>();
    conn->Open(u"DBQ=" + FromUtf8(setup.DatabasePath(o.site).string()) + u";");
    if (!search::HasRecordIndex(*conn)) {
      err << "ostrakan reindex: the database has no record index; apply "
          << (conn->backend().dialect() == ado::Dialect::kPostgres ? "data/schema.pg.sql"
                                                                   : "data/schema.sql")
          << " of this version to it first.\n";
      return 1;
    }
    records = search::RebuildRecordIndex(*conn);
  } catch (const ScriptError& e) {
    err << "ostrakan reindex: " << ToUtf8(e.description) << "\n";
    return 1;
  }
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  char line[128];
  std::snprintf(line, sizeof line, "Indexed %ld records in %.1f s.\n", records, seconds);
  out << line;
  if (o.json) {
    std::snprintf(line, sizeof line, "{\"records\":%ld,\"seconds\":%.3f}\n", records, seconds);
    out << line;
  }
  return 0;
}

}  // namespace ostrakan::engine
