// `ostrakan worker`: works the site's run queue (gathering/work_queue.h) until it is empty
// (--once) or until SIGINT or SIGTERM.
#pragma once

#include <atomic>
#include <filesystem>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/http/fetcher.h"

namespace ostrakan::engine {

struct WorkerOptions {
  std::filesystem::path site;
  bool once = false;
  bool json = false;
  long leaseSeconds = 180;
  std::shared_ptr<http::Fetcher> fetcher;  // the libcurl fetcher when null
  std::atomic<bool>* stop = nullptr;       // ends a worker without --once
};

// Reads the arguments after "worker"; nullopt with `problem` set when they are wrong.
std::optional<WorkerOptions> ParseWorkerArgs(const std::vector<std::string>& args,
                                             std::string& problem);

// Works the queue: a line per unit, then a summary line, and with --json
// {"runs", "pages", "inserted", "updated", "failed", "unmatched"}. Returns 0, or 1 with one
// sentence on `err` for a site that cannot be used or a failing database.
int RunWorker(const WorkerOptions& options, std::ostream& out, std::ostream& err);

}  // namespace ostrakan::engine
