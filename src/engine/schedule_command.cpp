#include "engine/schedule_command.h"

#include <ctime>
#include <ostream>

#include "core/script_error.h"
#include "engine/command_line.h"
#include "engine/gather_command.h"

namespace ostrakan::engine {
namespace {

std::optional<long long> Whole(const std::string& text, long long low) {
  if (text.empty() || text.size() > 12 || text.find_first_not_of("0123456789") != std::string::npos)
    return std::nullopt;
  const long long n = std::stoll(text);
  return n < low ? std::nullopt : std::optional(n);
}

// A JSON string of UTF-8 text.
std::string Json(const std::string& text) {
  std::string out = "\"";
  for (const unsigned char c : text) {
    if (c == '"' || c == '\\')
      out += {'\\', static_cast<char>(c)};
    else if (c < 0x20)
      out += "\\u00" + std::string{"0123456789abcdef"[c >> 4], "0123456789abcdef"[c & 15]};
    else
      out += static_cast<char>(c);
  }
  return out + "\"";
}

std::string LocalTime(long long ms) {
  const std::time_t t = static_cast<std::time_t>(ms / 1000);
  std::tm local{};
  localtime_r(&t, &local);
  char buf[32];
  std::strftime(buf, sizeof buf, "%Y-%m-%d %H:%M", &local);
  return buf;
}

}  // namespace

std::optional<ScheduleOptions> ParseScheduleArgs(const std::vector<std::string>& args,
                                                 std::string& problem) {
  const auto line = CommandLine::Read(
      args,
      {{"--json"},
       {"--site", "--keyword", "--pages", "--next", "--every", "--cron", "--delay-ms", "--retries"},
       true},
      problem);
  if (!line) return std::nullopt;
  ScheduleOptions o;
  o.json = line->Has("--json");
  const std::vector<std::string>& positional = line->words();
  bool haveSite = false, havePages = false, haveNext = false, haveEvery = false;
  gathering::Schedule& s = o.schedule;
  for (const auto& [a, v] : line->options()) {
    if (a == "--site") {
      o.site = v;
      haveSite = true;
    } else if (a == "--keyword") {
      s.keywords.push_back(FromUtf8(v));
    } else if (a == "--pages") {
      const size_t dash = v.find('-');
      auto first = Whole(v.substr(0, dash), 1);
      auto last = dash == std::string::npos ? first : Whole(v.substr(dash + 1), 1);
      if (!first || !last || *first > *last || *last > 1000000) {
        problem = "--pages takes FIRST-LAST, two whole numbers from 1 with FIRST not above LAST";
        return std::nullopt;
      }
      s.first = static_cast<long>(*first);
      s.last = static_cast<long>(*last);
      havePages = true;
    } else if (a == "--next") {
      auto n = Whole(v, 1);
      if (!n || *n > 1000000) {
        problem = "--next takes a whole number from 1 to 1000000";
        return std::nullopt;
      }
      s.next = static_cast<long>(*n);
      haveNext = true;
    } else if (a == "--every") {
      auto seconds = gathering::ReadInterval(v);
      if (!seconds) {
        problem = "--every takes an interval of a minute or more, as in 30m, 6h or 1d";
        return std::nullopt;
      }
      s.everySeconds = *seconds;
      haveEvery = true;
    } else if (a == "--cron") {
      if (std::string why = gathering::CronProblem(v); !why.empty()) {
        problem = why;
        return std::nullopt;
      }
      s.cron = FromUtf8(v);
    } else if (a == "--delay-ms" || a == "--retries") {
      auto n = Whole(v, 0);
      if (!n || *n > 3600000) {
        problem = a + " takes a whole number of 0 or more";
        return std::nullopt;
      }
      (a == "--delay-ms" ? s.pacing.delayMs : s.pacing.retries) = static_cast<int>(*n);
    }
  }
  if (!haveSite) {
    problem = "schedule needs --site DIR";
    return std::nullopt;
  }
  o.action = positional.empty() ? "" : positional[0];
  if (o.action == "list" && positional.size() == 1) return o;
  if (o.action == "remove" && positional.size() == 2) {
    auto id = Whole(positional[1], 1);
    if (!id) {
      problem = "the schedule number must be a whole number from 1";
      return std::nullopt;
    }
    o.id = *id;
    return o;
  }
  if (o.action != "add" || positional.size() != 3) {
    problem = "schedule takes \"add list|id RULE_ID ...\", \"list\" or \"remove ID\"";
    return std::nullopt;
  }
  s.kind = FromUtf8(positional[1]);
  auto ruleId = Whole(positional[2], 1);
  if ((s.kind != u"list" && s.kind != u"id") || !ruleId) {
    problem = "schedule add needs a kind of rule and a rule number, as in \"list 3\"";
    return std::nullopt;
  }
  s.ruleId = *ruleId;
  if (haveEvery == !s.cron.empty()) {
    problem = "schedule add needs one of --every INTERVAL and --cron \"M H * * *\"";
    return std::nullopt;
  }
  if (s.kind == u"list" && (haveNext || !havePages)) {
    problem = "a list schedule takes --pages FIRST-LAST (and --keyword), not --next";
    return std::nullopt;
  }
  if (s.kind == u"id" && (!haveNext || havePages || !s.keywords.empty())) {
    problem = "an ID schedule takes --next N, not --pages or --keyword";
    return std::nullopt;
  }
  return o;
}

int RunSchedule(const ScheduleOptions& o, std::ostream& out, std::ostream& err) {
  try {
    std::shared_ptr<ado::Connection> conn = OpenSiteDatabase(o.site, "schedule", err);
    if (!conn) return 1;
    if (o.action == "add") {
      const auto id = gathering::AddSchedule(*conn, o.schedule);
      if (!id) {
        err << "ostrakan schedule: there is no " << (o.schedule.kind == u"id" ? "ID" : "list")
            << " rule number " << o.schedule.ruleId << " in this site\n";
        return 1;
      }
      out << (o.json ? "{\"schedule\":" : "added schedule ") << *id << (o.json ? "}\n" : "\n");
    } else if (o.action == "remove") {
      if (!gathering::RemoveSchedule(*conn, o.id)) {
        err << "ostrakan schedule: there is no schedule number " << o.id << "\n";
        return 1;
      }
      out << "removed schedule " << o.id << "\n";
    } else {
      const auto list = gathering::ListSchedules(*conn);
      if (o.json) out << "[";
      bool first = true;
      for (const gathering::Schedule& s : list) {
        std::string words;
        for (const auto& w : s.keywords) words += (words.empty() ? "" : ",") + Json(ToUtf8(w));
        const std::string when = s.cron.empty() ? "every " + std::to_string(s.everySeconds) + "s"
                                                : "cron \"" + ToUtf8(s.cron) + "\"";
        if (o.json) {
          out << (first ? "" : ",") << "{\"id\":" << s.id << ",\"kind\":" << Json(ToUtf8(s.kind))
              << ",\"rule\":" << s.ruleId << ",\"keywords\":[" << words << "],\"pages\":\""
              << s.first << "-" << s.last << "\",\"next\":" << s.next
              << ",\"every_seconds\":" << s.everySeconds << ",\"cron\":" << Json(ToUtf8(s.cron))
              << ",\"due\":" << Json(LocalTime(s.dueAtMs)) << "}";
        } else {
          out << s.id << ": " << ToUtf8(s.kind) << " rule " << s.ruleId << ", "
              << (s.kind == u"id"
                      ? "next " + std::to_string(s.next)
                      : "pages " + std::to_string(s.first) + "-" + std::to_string(s.last) +
                            " for " + (words.empty() ? "the sample term" : words))
              << ", " << when << ", due " << LocalTime(s.dueAtMs) << "\n";
        }
        first = false;
      }
      if (o.json) out << "]\n";
    }
    out.flush();
    return 0;
  } catch (const ScriptError& e) {
    err << "ostrakan schedule: the database failed: " << ToUtf8(e.description) << "\n";
    return 1;
  }
}

}  // namespace ostrakan::engine
