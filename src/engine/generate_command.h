// `ostrakan generate`: rebuilds the front end's category pages of a site without a browser, on
// the same generators as the generator pages (for cron or a shell, also while the site is
// being served).
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace ostrakan::engine {

struct GenerateOptions {
  std::filesystem::path site;
  // Category numbers; none means the whole site. A top-level category brings its
  // sub-categories along.
  std::vector<std::string> categories;
  bool json = false;      // end standard output with {"files":N,"failed":M}
  bool progress = false;  // draw a progress bar on `err` (for a terminal)
};

// Returns the exit status: 0 when every page was written; otherwise 1 with one sentence on
// `err`.
int RunGenerate(const GenerateOptions& options, std::ostream& out, std::ostream& err);

}  // namespace ostrakan::engine
