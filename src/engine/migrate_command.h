// ostrakan migrate --site DIR --to URI: moves a site from its SQLite file to an empty
// PostgreSQL database. Every table is copied with its ids and checked (row count and digest
// per table) in one transaction; only then does the site switch: the file that DB names
// then holds the address, and the SQLite database is kept beside it as "<file>.sqlite". A
// failure at any point leaves the site on SQLite and the PostgreSQL database empty, so the
// command can be run again. The site's servers should be stopped while it runs.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>

namespace ostrakan::engine {

struct MigrateOptions {
  std::filesystem::path site;
  std::string to;     // a PostgreSQL connection URI without a password
  bool json = false;  // end with a one-line JSON summary
};

// Returns the exit status: 0 moved, 1 not moved (one sentence on `err`).
int RunMigrate(const MigrateOptions& options, std::ostream& out, std::ostream& err);

}  // namespace ostrakan::engine
