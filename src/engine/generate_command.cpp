#include "engine/generate_command.h"

#include <chrono>
#include <cstdio>
#include <ostream>

#include "engine/commands.h"
#include "engine/site_setup.h"
#include "frame/data_access.h"
#include "generation/category_pages.h"
#include "generation/rebuild_plan.h"
#include "platform/ado/connection.h"
#include "platform/fs/batched_writes.h"

namespace ostrakan::engine {
namespace {

using generation::Generated;

// Why a page was not written, as part of a sentence.
std::string Problem(const generation::PageJob& job, const Generated& result) {
  const std::string id = ToUtf8(TextOf(job.id));
  switch (result.outcome) {
    case Generated::Outcome::BadId:
      return "\"" + id + "\" is not a category number";
    case Generated::Outcome::Unknown:
      return "there is no category " + id;
    default:
      return "category " + id + ": " + result.failure;
  }
}

void DrawProgress(std::ostream& err, size_t done, size_t total) {
  constexpr size_t kWidth = 30;
  const size_t filled = total ? done * kWidth / total : kWidth;
  err << "\r[" << std::string(filled, '#') << std::string(kWidth - filled, '.') << "] " << done
      << "/" << total << std::flush;
}

// Pages are flushed to disk together, this many at a time: one flush per page would cost more
// than building it, and a batch still lets pages appear while a long rebuild runs.
constexpr size_t kPagesPerFlush = 256;

}  // namespace

int RunGenerate(const GenerateOptions& o, std::ostream& out, std::ostream& err) {
  if (std::string problem = CheckSite(o.site); !problem.empty()) {
    err << "ostrakan generate: " << problem << "\n";
    return 1;
  }
  std::vector<Variant> ids;
  for (const std::string& c : o.categories) {
    const Variant id(std::u16string_view(FromUtf8(c)));
    if (!IsValidId(id)) {
      err << "ostrakan generate: \"" << c << "\" is not a category number.\n";
      return 1;
    }
    ids.push_back(id);
  }
  const auto start = std::chrono::steady_clock::now();
  size_t files = 0, failed = 0;
  std::string firstProblem;
  try {
    const SiteSetup setup = LoadSiteSetup(o.site);
    auto conn = std::make_shared<ado::Connection>();
    conn->Open(u"DBQ=" + FromUtf8(setup.DatabasePath(o.site).string()) + u";");
    const generation::FrontEnd site{o.site, TextOf(setup.Get(u"WebSite_Title")),
                                    generation::ShowsSource(setup.Get(u"Source_Show"))};
    const std::vector<generation::PageJob> jobs =
        ids.empty() ? generation::WholeSitePlan(*conn) : generation::ChosenPlan(*conn, ids);
    fs::BatchedWrites batch(fs::FileSystem::Real());
    std::vector<std::pair<size_t, std::filesystem::path>> staged;  // pages waiting in the batch
    size_t firstFailed = jobs.size();
    auto fail = [&](size_t i, const Generated& result) {
      ++failed;
      if (i < firstFailed) {
        firstFailed = i;
        firstProblem = Problem(jobs[i], result);
      }
    };
    auto commit = [&] {
      for (const auto& [file, problem] : batch.Commit())
        for (const auto& [i, page] : staged)
          if (page == file) {
            Generated lost;
            lost.failure = problem;
            --files;
            fail(i, lost);
            break;
          }
      staged.clear();
    };
    for (size_t i = 0; i < jobs.size(); ++i) {
      Generated result;
      try {
        result = generation::GeneratePage(jobs[i].kind, *conn, batch, site, jobs[i].id);
      } catch (const ScriptError& e) {
        result.failure = ToUtf8(e.description);
      }
      if (result.outcome == Generated::Outcome::Written) {
        ++files;
        staged.emplace_back(i, result.file);
      } else {
        fail(i, result);
      }
      if (staged.size() >= kPagesPerFlush) commit();
      if (o.progress) DrawProgress(err, i + 1, jobs.size());
    }
    commit();
    if (o.progress) err << "\n";
  } catch (const ScriptError& e) {
    err << "ostrakan generate: " << ToUtf8(e.description) << "\n";
    return 1;
  } catch (const std::exception& e) {
    err << "ostrakan generate: " << e.what() << "\n";
    return 1;
  }
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  char line[160];
  std::snprintf(line, sizeof line, "Wrote %zu page%s, %zu failed, in %.2f s (%.0f pages/s).", files,
                files == 1 ? "" : "s", failed, seconds, seconds > 0 ? files / seconds : 0.0);
  out << line << "\n";
  if (o.json) out << "{\"files\":" << files << ",\"failed\":" << failed << "}\n";
  if (failed) {
    err << "ostrakan generate: " << failed << " of " << files + failed
        << " pages were not written; the first: " << firstProblem << ".\n";
    return 1;
  }
  return 0;
}

}  // namespace ostrakan::engine
