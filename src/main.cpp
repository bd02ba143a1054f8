// The ostrakan command: make a site (init), serve one (serve), and the headless jobs on a site
// (gather, worker, schedule, rules, generate, reindex).
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "engine/command_line.h"
#include "engine/commands.h"
#include "engine/gather_command.h"
#include "engine/generate_command.h"
#include "engine/migrate_command.h"
#include "engine/reindex_command.h"
#include "engine/rules_command.h"
#include "engine/schedule_command.h"
#include "engine/worker_command.h"
#include "platform/http/fetch_stop.h"

namespace {

using namespace ostrakan::engine;

constexpr char kHelp[] = R"(ostrakan - the administration back end of a video search site

Usage:
  ostrakan init DIR [--admin NAME] [--password PASSWORD] [--from SITE] [--database URI]
      Make a new site in DIR (which must not exist or must be empty): a copy of SITE
      (by default the site/ folder this program was built with), a fresh SQLite database
      at the path that DB in Setup.asp names (from data/schema.sql), and a first
      administrator NAME (default "admin"). Without --password a random 12-character
      password is made and printed once. Names and passwords may not contain blanks or
      any of # % ' " ( ) * + ; < > [ ], which the sign-in page removes.
      --database postgresql://USER@HOST/NAME puts the site's tables into that empty
      PostgreSQL database (from data/schema.pg.sql) instead; the file DB names then holds
      the address. The address may not hold a password: put it in ~/.pgpass.

  ostrakan serve --site DIR [--listen HOST:PORT] [--threads N] [--behind-proxy]
      Serve the site in DIR over HTTP. Before listening it checks that DIR has a readable
      Setup.asp and that the database it names exists, is the site's database and is
      writable (with its folder and journal files); any problem is reported and the exit
      status is 1. --listen defaults to 127.0.0.1:8080 (a bare PORT means 127.0.0.1:PORT;
      port 0 picks a free one); --threads (default 64) is the number of pages run at
      once (the sign-in pages, the desktop and goto.asp have threads of their own); a page
      that cannot start within 3 seconds is answered with 503. Idle and slow connections
      cost no thread.
      Errors of the pages are logged in DIR/data/PagebindLog.Log. SIGINT or SIGTERM (Ctrl-C, or kill PID) stops the
      server. --behind-proxy: requests come through a proxy on this machine (nginx,
      see deploy/), which names the client in X-Real-IP.

  ostrakan migrate --site DIR --to postgresql://USER@HOST/NAME [--json]
      Move the site in DIR from its SQLite database to that empty PostgreSQL database:
      every table is copied with its ids and checked (row count and digest per table) in
      one transaction, then the site switches over and its SQLite file is kept beside the
      address as FILE.sqlite. A failure leaves the site on SQLite and can be run again.
      Stop the site's servers first. Progress on a terminal; --json ends the output with
      a one-line JSON summary. The address may not hold a password: use ~/.pgpass.

  ostrakan passwd --site DIR --admin NAME [--password PASSWORD] [--add] [--json]
      Set the password of the administrator NAME of the site in DIR. A NAME that no
      account has is refused, and the existing administrators are listed; with --add
      the account NAME is added instead (use it when nobody can sign in any more). The
      same rules as init apply to NAME and PASSWORD; without --password a random one is
      made and printed once. --json ends the output with a one-line JSON summary.

  ostrakan generate --site DIR [--category ID ...] [--json]
      Rebuild the front end's category pages of the site in DIR from its templates: with
      no --category every top-level page (sort_list_ID.html) and every sub-category page
      (list/list_ID.html); with --category (repeatable) those categories, a top-level one
      with all its sub-categories. Each page is written whole (a temporary file renamed
      over the old one), so it may run while the site is served. Prints a summary line;
      with --json the last line is {"files":N,"failed":M}. Exit status 1 when any page
      was not written (a missing template, an unknown category ...).

  ostrakan reindex --site DIR [--json]
      Rebuild the record index of the site in DIR (the index behind the public search and
      the administration's record search) from its records. Searches keep answering from
      the old index until the new one is complete. Prints a summary line; with --json the
      last line is {"records":N,"seconds":S}.

  ostrakan gather --site DIR list RULE_ID [--keyword WORD] [--pages FIRST-LAST]
                  [--delay-ms N] [--retries N] [--json] [--resume | --queue]
      Gather with the list-site rule RULE_ID of the site in DIR, without a browser: fetch
      its result pages FIRST to LAST (default 1-1, both gathered) for WORD (default the
      sample term), waiting N ms between fetches (default 1000) and retrying a failed fetch
      N times (default 2), and store the entries in the video table, new links added and
      known ones refreshed. Safe while "ostrakan serve" runs on the same site. Shows a
      progress bar on a terminal and a line per page otherwise, then a summary; with
      --json the last line is {"pages", "entries", "inserted", "updated", "no_results",
      "failed", "unmatched"}. Each run is kept in the table gather_run; --resume continues
      the last unfinished run of the rule where it stopped (or starts a new one when there is
      none). A page fetched with status 200 on which the rule finds no entry and no
      no-results marker is "unmatched"; when every fetched page is, the rule is marked
      "may be broken" and the exit status is 3 (cron can mail the operator). Failed fetches
      are counted, not fatal (each line says why); a missing site or rule exits with status 1.
      With --queue the run is recorded for "ostrakan worker" instead, and its number printed
      ({"run": N} with --json).

  ostrakan gather --site DIR id RULE_ID --ids FIRST-LAST [--delay-ms N] [--retries N]
                  [--json] [--resume | --queue]
      Gather with the ID-site rule RULE_ID: fetch its numbered pages FIRST to LAST (all of
      them gathered), paced and retried as above, and store one record per page that has
      data (a page holding the rule's error marker is counted as without data). When the
      run completes, the rule's range becomes "FIRST - LAST". With --json the last line is
      {"ids", "inserted", "updated", "no_data", "failed", "unmatched"}; a page with neither
      title nor error marker is unmatched, with exit status 3 as above. --resume continues
      the last unfinished ID run of the rule (--ids may then be left out); --queue queues it.

  ostrakan worker --site DIR [--once] [--json] [--lease-seconds N]
      Work the site's run queue (runs queued by "gather --queue"): take one page or ID at a
      time by a lease, so that several workers, here or on other machines sharing the
      database, share a run without fetching or storing anything twice. At most one fetch
      at a time goes to one remote host across all workers, with the run's pause between
      fetches; a failed fetch is retried with a growing pause and then kept as a failed page
      of the run. A lease not finished within N seconds (default 180) is taken over by
      another worker. With --once the worker stops when the queue is empty, otherwise it
      waits for work until SIGINT or SIGTERM. A line per page, then a summary; with --json
      the last line is {"runs", "pages", "inserted", "updated", "failed", "unmatched"}.
      Workers also queue the runs of the schedules that are due, each due time once.

  ostrakan schedule --site DIR add list RULE_ID --pages FIRST-LAST [--keyword WORD ...]
                    (--every INTERVAL | --cron "M H * * *") [--delay-ms N] [--retries N]
  ostrakan schedule --site DIR add id RULE_ID --next N (--every INTERVAL | --cron "M H * * *")
  ostrakan schedule --site DIR list [--json]
  ostrakan schedule --site DIR remove ID
      Gathering that runs itself. A list schedule queues one run per keyword (the sample
      term when none is given) over the pages; an ID schedule queues the N numbers after
      the last range the rule gathered, so a site that publishes new numbers is followed
      as it grows. A new schedule is due at once, then every INTERVAL (30m, 6h, 1d; a
      minute or more) or at each local time the cron line names (minute and hour, each a
      number or *). "ostrakan worker" queues and works what is due.

  ostrakan rules --site DIR export [--kind list|id] [ID ...]
  ostrakan rules --site DIR import FILE [--dry-run] [--json]
      Rules as files. export writes the chosen rules (all of both kinds, all of one kind,
      or the numbered rules of one kind) with every field as one UTF-8 JSON document to
      standard output. import adds the rules of such a document as new rules and rewrites
      the rule files; a malformed file, an unknown version or a rule without one of its
      fields is refused with one sentence naming the place, and nothing is added. --dry-run
      says what would be added and adds nothing; --json prints {"dry_run", "rules"}.

  ostrakan --help
      This text.
)";

int Usage(const std::string& problem) {
  std::cerr << "ostrakan: " << problem << "\n(see \"ostrakan --help\")\n";
  return 2;
}

std::filesystem::path DefaultSiteDir() {
#ifdef OSTRAKAN_SITE_DIR
  if (std::filesystem::is_directory(OSTRAKAN_SITE_DIR)) return OSTRAKAN_SITE_DIR;
#endif
  // Next to the executable's folder (an installed tree: bin/ostrakan and site/).
  std::error_code ec;
  auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  return exe.parent_path().parent_path() / "site";
}

int Init(const std::vector<std::string>& args) {
  if (args.size() < 2 || args[1].starts_with("--")) return Usage("init needs a folder");
  std::string problem;
  const auto line =
      CommandLine::Read({args.begin() + 2, args.end()},
                        {{}, {"--admin", "--password", "--from", "--database"}}, problem);
  if (!line) return Usage(problem);
  InitOptions o;
  o.dir = args[1];
  o.from = DefaultSiteDir();
  for (const auto& [name, value] : line->options()) {
    if (name == "--database") o.database = value;
    if (name == "--admin") o.admin = value;
    if (name == "--password") o.password = value;
    if (name == "--from") o.from = value;
  }
  return RunInit(o, std::cout, std::cerr);
}

int Serve(const std::vector<std::string>& args) {
  std::string problem;
  const auto line =
      CommandLine::Read({args.begin() + 1, args.end()},
                        {{"--behind-proxy"}, {"--site", "--listen", "--threads"}}, problem);
  if (!line) return Usage(problem);
  ServeOptions o;
  o.behindProxy = line->Has("--behind-proxy");
  if (const std::string* listen = line->Value("--listen"))
    o.listen = listen->find(':') == std::string::npos ? "127.0.0.1:" + *listen : *listen;
  if (const std::string* threads = line->Value("--threads")) {
    try {
      o.threads = std::stoi(*threads);
    } catch (const std::exception&) {
      o.threads = 0;
    }
    if (o.threads < 1 || o.threads > 1024) return Usage("--threads takes a number from 1 to 1024");
  }
  const std::string* site = line->Value("--site");
  if (!site) return Usage("serve needs --site DIR");
  o.site = *site;
  return RunServe(o, std::cout, std::cerr);
}

// ostrakan generate --site DIR [--category ID ...] [--json]
int Generate(const std::vector<std::string>& args) {
  std::string problem;
  const auto line = CommandLine::Read({args.begin() + 1, args.end()},
                                      {{"--json"}, {"--site", "--category"}}, problem);
  if (!line) return Usage(problem);
  GenerateOptions o;
  o.json = line->Has("--json");
  o.categories = line->Values("--category");
  const std::string* site = line->Value("--site");
  if (!site) return Usage("generate needs --site DIR");
  o.site = *site;
  o.progress = isatty(STDERR_FILENO) != 0;
  return RunGenerate(o, std::cout, std::cerr);
}

// ostrakan reindex --site DIR [--json]
int Reindex(const std::vector<std::string>& args) {
  std::string problem;
  const auto line =
      CommandLine::Read({args.begin() + 1, args.end()}, {{"--json"}, {"--site"}}, problem);
  if (!line) return Usage(problem);
  ReindexOptions o;
  o.json = line->Has("--json");
  const std::string* site = line->Value("--site");
  if (!site) return Usage("reindex needs --site DIR");
  o.site = *site;
  return RunReindex(o, std::cout, std::cerr);
}

int Migrate(const std::vector<std::string>& args) {
  std::string problem;
  const auto line =
      CommandLine::Read({args.begin() + 1, args.end()}, {{"--json"}, {"--site", "--to"}}, problem);
  if (!line) return Usage(problem);
  MigrateOptions o;
  o.json = line->Has("--json");
  const std::string *site = line->Value("--site"), *to = line->Value("--to");
  if (!site || !to || site->empty() || to->empty())
    return Usage("migrate needs --site DIR and --to URI");
  o.site = *site;
  o.to = *to;
  return RunMigrate(o, std::cout, std::cerr);
}

int Passwd(const std::vector<std::string>& args) {
  std::string problem;
  const auto line =
      CommandLine::Read({args.begin() + 1, args.end()},
                        {{"--json", "--add"}, {"--site", "--admin", "--password"}}, problem);
  if (!line) return Usage(problem);
  PasswdOptions o;
  o.json = line->Has("--json");
  o.add = line->Has("--add");
  const std::string *site = line->Value("--site"), *admin = line->Value("--admin");
  if (!site || !admin) return Usage("passwd needs --site DIR and --admin NAME");
  o.site = *site;
  o.admin = *admin;
  if (const std::string* password = line->Value("--password")) o.password = *password;
  return RunPasswd(o, std::cout, std::cerr);
}

// The --help text of one command: its paragraphs of the whole help (gather has two forms,
// schedule and rules several).
std::string HelpFor(const std::string& command) {
  const std::string help = kHelp;
  std::string text;
  const std::string start = "  ostrakan " + command + " ";
  for (size_t from = help.find(start); from != std::string::npos; from = help.find(start, from)) {
    size_t to = help.find("\n\n  ostrakan ", from);
    to = to == std::string::npos ? help.size() : to + 2;
    if (from == 0 || help[from - 1] == '\n') text += help.substr(from, to - from);
    from = to;
  }
  return text.empty() ? help : "Usage:\n" + text;
}

std::atomic<bool> workerStop{false};
extern "C" void StopWorker(int) {
  workerStop = true;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty()) return Usage("no command given");
  const std::string& command = args[0];
  if (command == "--help" || command == "-h" || command == "help") {
    std::cout << kHelp;
    return 0;
  }
  if (std::find(args.begin() + 1, args.end(), "--help") != args.end() ||
      (args.size() > 1 && args[1] == "-h")) {
    std::cout << HelpFor(command);
    return 0;
  }
  if (command == "init") return Init(args);
  if (command == "serve") return Serve(args);
  if (command == "passwd") return Passwd(args);
  if (command == "migrate") return Migrate(args);
  if (command == "generate") return Generate(args);
  if (command == "reindex") return Reindex(args);
  if (command == "gather") {
    std::vector<std::string> rest(args.begin() + 1, args.end());
    std::string problem;
    auto options = ParseGatherArgs(rest, problem);
    if (!options) return Usage(problem);
    options->terminal = isatty(STDOUT_FILENO);
    return RunGather(*options, std::cout, std::cerr);
  }
  if (command == "schedule") {
    std::string problem;
    auto options = ParseScheduleArgs({args.begin() + 1, args.end()}, problem);
    if (!options) return Usage(problem);
    return RunSchedule(*options, std::cout, std::cerr);
  }
  if (command == "rules") {
    std::string problem;
    auto options = ParseRulesArgs({args.begin() + 1, args.end()}, problem);
    if (!options) return Usage(problem);
    return RunRules(*options, std::cout, std::cerr);
  }
  if (command == "worker") {
    std::string problem;
    auto options = ParseWorkerArgs({args.begin() + 1, args.end()}, problem);
    if (!options) return Usage(problem);
    // SIGINT and SIGTERM end the worker after its unit; a fetch under way gives up at once.
    signal(SIGINT, StopWorker);
    signal(SIGTERM, StopWorker);
    ostrakan::http::WatchStopSignal(&workerStop);
    options->stop = &workerStop;
    return RunWorker(*options, std::cout, std::cerr);
  }
  return Usage("unknown command \"" + command + "\"");
}
