#include "search/record_index.h"

#include "platform/ado/recordset.h"

namespace ostrakan::search {

bool HasRecordIndex(ado::Connection& conn) {
  auto rs = conn.Execute(u"select count(*) from sqlite_master where name = 'db_index'");
  return CDbl(rs->FieldAt(0)) > 0;
}

long RebuildRecordIndex(ado::Connection& conn) {
  conn.Execute(u"insert into db_index (db_index) values ('rebuild')");
  auto rs = conn.Execute(u"select count(*) from db");
  return static_cast<long>(CDbl(rs->FieldAt(0)));
}

}  // namespace ostrakan::search
