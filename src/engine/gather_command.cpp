#include "engine/gather_command.h"

#include <chrono>
#include <cstdio>
#include <optional>
#include <ostream>
#include <tuple>
#include <utility>

#include "core/script_error.h"
#include "engine/command_line.h"
#include "engine/commands.h"
#include "engine/site_setup.h"
#include "frame/error_log.h"
#include "gathering/rule_run.h"

namespace ostrakan::engine {
namespace {

using Clock = std::chrono::steady_clock;

// A whole number of at most 12 digits, not below `low`.
std::optional<long long> ReadNumber(const std::string& text, long long low) {
  if (text.empty() || text.size() > 12 || text.find_first_not_of("0123456789") != std::string::npos)
    return std::nullopt;
  const long long n = std::stoll(text);
  if (n < low) return std::nullopt;
  return n;
}

// "FIRST-LAST" or one number, FIRST not above LAST, LAST at most a million.
std::optional<std::pair<long, long>> ReadRange(const std::string& text) {
  const size_t dash = text.find('-');
  const std::optional<long long> a = ReadNumber(text.substr(0, dash), 0);
  const std::optional<long long> b =
      dash == std::string::npos ? a : ReadNumber(text.substr(dash + 1), 0);
  if (!a || !b || *a > *b || *b > 1000000) return std::nullopt;
  return std::pair{static_cast<long>(*a), static_cast<long>(*b)};
}

std::string Duration(double seconds) {
  long s = static_cast<long>(seconds + 0.5);
  char buf[32];
  std::snprintf(buf, sizeof buf, "%ld:%02ld", s / 60, s % 60);
  return buf;
}

// Progress on a terminal: one line redrawn in place.
void DrawBar(std::ostream& out, const gathering::JournalRun& run, const char* units,
             long doneThisTime, double elapsed) {
  const long total = run.last - run.first + 1;
  const long done = run.next - run.first;
  const int width = 24;
  const int filled = total > 0 ? static_cast<int>(width * done / total) : width;
  const long left = run.last - run.next + 1;
  std::string eta = doneThisTime > 0 ? Duration(elapsed / doneThisTime * left) : "?";
  out << "\r[" << std::string(filled, '#') << std::string(width - filled, '-') << "] " << done
      << "/" << total << " " << units << ", " << run.counts.inserted << " inserted, "
      << run.counts.updated << " updated, " << run.counts.failed << " failed, " << eta << " left  "
      << std::flush;
}

}  // namespace

std::optional<GatherOptions> ParseGatherArgs(const std::vector<std::string>& args,
                                             std::string& problem) {
  const auto line =
      CommandLine::Read(args,
                        {{"--json", "--queue", "--resume"},
                         {"--site", "--keyword", "--pages", "--ids", "--delay-ms", "--retries"},
                         true},
                        problem);
  if (!line) return std::nullopt;
  GatherOptions o;
  o.json = line->Has("--json");
  o.queue = line->Has("--queue");
  o.resume = line->Has("--resume");
  const std::vector<std::string>& positional = line->words();
  bool haveSite = false, havePages = false, haveIds = false;
  for (const auto& [a, v] : line->options()) {
    if (a == "--site") {
      o.site = v;
      haveSite = true;
    } else if (a == "--keyword") {
      o.keyword = v;
    } else if (a == "--pages" || a == "--ids") {
      const auto range = ReadRange(v);
      if (!range) {
        problem = a + " takes FIRST-LAST, two whole numbers with FIRST not above LAST";
        return std::nullopt;
      }
      std::tie(o.first, o.last) = *range;
      (a == "--pages" ? havePages : haveIds) = true;
      o.rangeGiven = true;
    } else if (a == "--delay-ms" || a == "--retries") {
      const std::optional<long long> n = ReadNumber(v, 0);
      if (!n || *n > 3600000) {
        problem = a + " takes a whole number of 0 or more";
        return std::nullopt;
      }
      (a == "--delay-ms" ? o.delayMs : o.retries) = static_cast<int>(*n);
    }
  }
  if (!haveSite) {
    problem = "gather needs --site DIR";
    return std::nullopt;
  }
  if (positional.size() != 2) {
    problem = "gather needs a kind of rule and a rule number, as in \"list 3\"";
    return std::nullopt;
  }
  o.kind = positional[0];
  if (o.kind != "list" && o.kind != "id") {
    problem = "gather knows the rule kinds \"list\" and \"id\", not \"" + o.kind + "\"";
    return std::nullopt;
  }
  if (o.kind == "list" && haveIds) {
    problem = "a list rule walks --pages, not --ids";
    return std::nullopt;
  }
  if (o.kind == "id" && (havePages || o.keyword)) {
    problem = "an ID rule takes --ids FIRST-LAST, not --pages or --keyword";
    return std::nullopt;
  }
  if (o.queue && o.resume) {
    problem = "a queued run cannot --resume; the workers carry queued runs through";
    return std::nullopt;
  }
  if (o.kind == "id" && !haveIds && !o.resume) {
    problem = "an ID rule needs --ids FIRST-LAST";
    return std::nullopt;
  }
  const std::optional<long long> ruleId = ReadNumber(positional[1], 1);
  if (!ruleId) {
    problem = "the rule number must be a whole number from 1";
    return std::nullopt;
  }
  o.ruleId = *ruleId;
  return o;
}

std::shared_ptr<ado::Connection> OpenSiteDatabase(const std::filesystem::path& site,
                                                  const std::string& command, std::ostream& err) {
  if (std::string problem = CheckSite(site); !problem.empty()) {
    err << "ostrakan " << command << ": " << problem << "\n";
    return nullptr;
  }
  SetErrorLogPath(site / "data" / "PagebindLog.Log");
  auto conn = std::make_shared<ado::Connection>();  // record sets keep their connection
  conn->Open(u"DBQ=" + FromUtf8(LoadSiteSetup(site).DatabasePath(site).string()) + u";");
  // Each page is one commit; in WAL mode NORMAL keeps every commit through a crash of this
  // process (what --resume relies on) without a flush to disk per page.
  if (conn->backend().dialect() == ado::Dialect::kSqlite)
    conn->Execute(u"pragma synchronous = NORMAL");
  return conn;
}

int RunGather(const GatherOptions& o, std::ostream& out, std::ostream& err) {
  try {
    std::shared_ptr<ado::Connection> conn = OpenSiteDatabase(o.site, "gather", err);
    if (!conn) return 1;
    const bool ids = o.kind == "id";
    const char* unit = ids ? "ID" : "page";
    gathering::RunRequest request;
    request.kind = FromUtf8(o.kind);
    request.ruleId = o.ruleId;
    if (o.keyword) request.keyword = FromUtf8(*o.keyword);
    request.first = o.first;
    request.last = o.last;
    request.rangeGiven = o.rangeGiven;
    request.resume = o.resume;
    request.pacing = {o.delayMs, o.retries, o.retryPauseMs};
    auto noRule = [&] {
      err << "ostrakan gather: there is no " << (ids ? "ID" : "list") << " rule number " << o.ruleId
          << " in this site\n";
      return 1;
    };

    if (o.queue) {
      const std::optional<long long> id = gathering::QueueRule(*conn, request);
      if (!id) return noRule();
      out << (o.json ? "{\"run\":" : "queued run ") << *id << (o.json ? "}\n" : "\n");
      out.flush();
      return 0;
    }

    std::shared_ptr<http::Fetcher> fetcher = o.fetcher ? o.fetcher : http::MakeCurlFetcher();
    const auto started = Clock::now();
    long resumedAt = o.first, previousEntries = 0;
    gathering::RunEvents events;
    events.resumed = [&](const gathering::JournalRun& r) {
      resumedAt = r.next;
      previousEntries = r.counts.entries;
      out << "resuming run " << r.id << " of rule " << o.ruleId << " at " << unit << " " << r.next
          << " of " << r.first << "-" << r.last << "\n"
          << std::flush;
    };
    events.progress = [&](const gathering::JournalRun& r) {
      if (o.terminal) {
        std::chrono::duration<double> elapsed = Clock::now() - started;
        DrawBar(out, r, ids ? "IDs" : "pages", r.next - resumedAt, elapsed.count());
      } else {
        // Each page's own count, then the running totals; written at once (cron keeps what a
        // killed run said).
        const auto& c = r.counts;
        out << unit << " " << r.next - 1 << " done: " << c.entries - previousEntries << " entries ("
            << c.entries << " in all), " << c.inserted << " inserted, " << c.updated << " updated, "
            << c.failed << " failed" << std::endl;
      }
      previousEntries = r.counts.entries;
    };
    events.failure = [&](long n, const std::string& why) {
      if (o.terminal) out << "\n";
      out << unit << " " << n << " failed: " << why << std::endl;
    };
    const gathering::RunResult result = gathering::GatherRule(*conn, request, *fetcher, events);
    if (result.status == gathering::RunStatus::NoRule) return noRule();
    if (result.status == gathering::RunStatus::NothingToResume) {
      err << "ostrakan gather: there is no unfinished run of ID rule " << o.ruleId
          << " to resume, so --ids FIRST-LAST is needed\n";
      return 1;
    }
    if (o.terminal) out << "\n";

    const auto& c = result.run.counts;
    if (ids) {
      out << "rule " << o.ruleId << ": " << c.pages << " IDs, " << c.inserted << " inserted, "
          << c.updated << " updated, " << c.noResults << " without data, " << c.unmatched
          << " unmatched, " << c.failed << " failed\n";
      if (o.json)
        out << "{\"ids\":" << c.pages << ",\"inserted\":" << c.inserted
            << ",\"updated\":" << c.updated << ",\"no_data\":" << c.noResults
            << ",\"failed\":" << c.failed << ",\"unmatched\":" << c.unmatched << "}\n";
    } else {
      out << "rule " << o.ruleId << ": " << c.pages << " pages, " << c.entries << " entries, "
          << c.inserted << " inserted, " << c.updated << " updated, " << c.noResults
          << " without results, " << c.unmatched << " unmatched, " << c.failed << " failed\n";
      if (o.json)
        out << "{\"pages\":" << c.pages << ",\"entries\":" << c.entries
            << ",\"inserted\":" << c.inserted << ",\"updated\":" << c.updated
            << ",\"no_results\":" << c.noResults << ",\"failed\":" << c.failed
            << ",\"unmatched\":" << c.unmatched << "}\n";
    }
    if (result.ruleMatchedNothing)
      err << "ostrakan gather: rule " << o.ruleId
          << " matched nothing on the pages it fetched; its remote site may have changed\n";
    out.flush();
    return result.ruleMatchedNothing ? 3 : 0;
  } catch (const ScriptError& e) {
    err << "ostrakan gather: the database failed: " << ToUtf8(e.description) << "\n";
    return 1;
  }
}

}  // namespace ostrakan::engine
