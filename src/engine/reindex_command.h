// `ostrakan reindex`: rebuilds the record index of a site from its records (also while the
// site is being served: searches see the old index until the new one is complete).
#pragma once

#include <filesystem>
#include <iosfwd>

namespace ostrakan::engine {

struct ReindexOptions {
  std::filesystem::path site;
  bool json = false;  // end standard output with {"records":N,"seconds":S}
};

// Returns the exit status: 0 when the index was rebuilt; otherwise 1 with one sentence on `err`.
int RunReindex(const ReindexOptions& options, std::ostream& out, std::ostream& err);

}  // namespace ostrakan::engine
