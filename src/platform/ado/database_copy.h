// Moving a site's SQLite database into PostgreSQL: every table with its ids, in one
// transaction on the server, checked by row count and a digest per table before it commits.
// A failure commits nothing, so the copy can simply be run again.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace ostrakan::ado {

struct CopiedTable {
  std::string name;
  long long rows = 0;
  std::string digest;  // 16 hexadecimal digits over every value of every row, in id (or key) order
};

// Called after each batch of rows: the table, rows copied so far, rows in it.
using CopyProgress = std::function<void(const std::string&, long long, long long)>;

// Creates the tables of `schema` in the empty PostgreSQL database at `uri` and copies into
// them every table of the SQLite file `sqliteFile`, then sets each id sequence past the
// largest id. Raises ScriptError, in one sentence, when the server cannot be reached, the
// database holds tables already, a table or column has no place in the schema, a value is
// refused (text in a date column ...), or the counts or digests differ; nothing is committed
// then.
std::vector<CopiedTable> CopyToServer(const std::filesystem::path& sqliteFile,
                                      const std::string& uri, const std::string& schema,
                                      const CopyProgress& progress);

}  // namespace ostrakan::ado
