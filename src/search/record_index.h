// Upkeep of the record index (db_index): rebuilding it from db, for `ostrakan reindex` (a site
// made by an earlier version, a database written while the index's triggers were missing).
#pragma once

#include "platform/ado/connection.h"

namespace ostrakan::search {

// Whether the database has the record index.
bool HasRecordIndex(ado::Connection& conn);

// Rebuilds the index from every row of db, in one transaction (readers see the old index
// until it commits). Returns the number of records indexed.
long RebuildRecordIndex(ado::Connection& conn);

}  // namespace ostrakan::search
