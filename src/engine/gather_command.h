// `ostrakan gather`: a headless gathering run for cron or a shell, on the same extraction and
// record store as the web pages, with pacing, retries, a progress display, a run journal in
// the database and --resume.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/connection.h"
#include "platform/http/fetcher.h"

namespace ostrakan::engine {

struct GatherOptions {
  std::filesystem::path site;
  std::string kind = "list";  // or "id"
  long long ruleId = 0;
  std::optional<std::string> keyword;  // UTF-8; the sample term when absent
  long first = 1, last = 1;            // pages, or with "id" the IDs (--ids is then required)
  int delayMs = 1000;
  int retries = 2;
  int retryPauseMs = 1000;
  bool json = false;
  bool resume = false;
  bool queue = false;                      // record the run for the workers instead of running it
  bool rangeGiven = false;                 // --pages or --ids was given
  bool terminal = false;                   // draw a progress bar instead of lines
  std::shared_ptr<http::Fetcher> fetcher;  // the libcurl fetcher when null
};

// Reads the arguments after "gather"; nullopt with `problem` set when they are wrong.
std::optional<GatherOptions> ParseGatherArgs(const std::vector<std::string>& args,
                                             std::string& problem);

// Runs the gathering, or queues it; returns the exit status: 0 when the run went through
// (failed fetches included) or was queued, 3 when the rule matched none of the pages it
// fetched, 1 with one sentence on `err` for a missing site or rule or a failing database.
int RunGather(const GatherOptions& options, std::ostream& out, std::ostream& err);

// Checks the site and opens its database for a headless command; nullptr after one sentence
// "ostrakan COMMAND: ..." on `err`. Raises ScriptError when the database cannot be opened.
std::shared_ptr<ado::Connection> OpenSiteDatabase(const std::filesystem::path& site,
                                                  const std::string& command, std::ostream& err);

}  // namespace ostrakan::engine
