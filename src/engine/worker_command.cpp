#include "engine/worker_command.h"

#include <ostream>

#include "core/script_error.h"
#include "engine/command_line.h"
#include "engine/gather_command.h"
#include "gathering/work_queue.h"

namespace ostrakan::engine {

std::optional<WorkerOptions> ParseWorkerArgs(const std::vector<std::string>& args,
                                             std::string& problem) {
  const auto line =
      CommandLine::Read(args, {{"--once", "--json"}, {"--site", "--lease-seconds"}}, problem);
  if (!line) return std::nullopt;
  WorkerOptions o;
  o.once = line->Has("--once");
  o.json = line->Has("--json");
  if (const std::string* v = line->Value("--lease-seconds")) {
    if (v->empty() || v->size() > 6 || v->find_first_not_of("0123456789") != v->npos ||
        std::stol(*v) < 1) {
      problem = "--lease-seconds takes a whole number from 1";
      return std::nullopt;
    }
    o.leaseSeconds = std::stol(*v);
  }
  const std::string* site = line->Value("--site");
  if (!site) {
    problem = "worker needs --site DIR";
    return std::nullopt;
  }
  o.site = *site;
  return o;
}

int RunWorker(const WorkerOptions& o, std::ostream& out, std::ostream& err) {
  try {
    std::shared_ptr<ado::Connection> conn = OpenSiteDatabase(o.site, "worker", err);
    if (!conn) return 1;
    std::shared_ptr<http::Fetcher> fetcher = o.fetcher ? o.fetcher : http::MakeCurlFetcher();
    gathering::WorkOptions work;
    work.once = o.once;
    work.leaseMs = o.leaseSeconds * 1000;
    work.stop = o.stop;
    const gathering::WorkSummary s = gathering::WorkQueue(
        *conn, *fetcher, work, [&](long long run, long unit, const std::string& what) {
          out << "run " << run << ", unit " << unit << ": " << what << std::endl;
        });
    out << s.runs << " runs, " << s.pages << " pages, " << s.inserted << " inserted, " << s.updated
        << " updated, " << s.failed << " failed, " << s.unmatched << " unmatched\n";
    if (o.json)
      out << "{\"runs\":" << s.runs << ",\"pages\":" << s.pages << ",\"inserted\":" << s.inserted
          << ",\"updated\":" << s.updated << ",\"failed\":" << s.failed
          << ",\"unmatched\":" << s.unmatched << "}\n";
    out.flush();
    return 0;
  } catch (const ScriptError& e) {
    err << "ostrakan worker: the database failed: " << ToUtf8(e.description) << "\n";
    return 1;
  }
}

}  // namespace ostrakan::engine
