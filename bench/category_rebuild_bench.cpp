// A whole-site rebuild of the front end's category pages: 1,000 categories (50 top-level with
// 19 sub-categories each) over 1,000,000 records, against the same queries run bare in SQLite
// (prepared, bound, stepped, every column read, no page built or written).
//
// The data is made once under $OSTRAKAN_BENCH_DATA (default /tmp/ostrakan-bench) and reused.
// Titles are three words of a 2,000-word vocabulary of which the sub-category names are 950, so
// each name is in about 1,500 titles. Counters: files/s of the rebuild; the bare queries'
// seconds. Run with --benchmark_filter=Rebuild|Bare.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <sstream>

#include "categories/category_store.h"
#include "generation/category_pages.h"
#include "generation/rebuild_plan.h"
#include "platform/ado/connection.h"
#include "platform/fs/batched_writes.h"

namespace {

namespace stdfs = std::filesystem;
using namespace ostrakan;

constexpr int kTopLevel = 50, kPerTop = 19, kRecords = 1000000, kWords = 2000;

stdfs::path DataDir() {
  const char* dir = std::getenv("OSTRAKAN_BENCH_DATA");
  return dir ? dir : "/tmp/ostrakan-bench";
}

void Exec(sqlite3* db, const std::string& sql) {
  char* err = nullptr;
  if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &err) != SQLITE_OK)
    throw std::runtime_error(err ? err : "sqlite error");
}

// Two-character words of common CJK characters, all different.
std::vector<std::string> Vocabulary() {
  std::mt19937 rng(7);
  std::vector<std::string> words;
  std::set<std::u16string> seen;
  while (words.size() < kWords) {
    std::u16string w{static_cast<char16_t>(0x4E00 + rng() % 5000),
                     static_cast<char16_t>(0x4E00 + rng() % 5000)};
    if (seen.insert(w).second) words.push_back(ToUtf8(w));
  }
  return words;
}

// The site: schema, templates, list/ folder, and the data (made once).
stdfs::path Site() {
  static const stdfs::path site = [] {
    const stdfs::path root = DataDir() / "site";
    const stdfs::path db = root / "data/bench.db";
    const stdfs::path source = stdfs::path(OSTRAKAN_SOURCE_DIR) / "site";
    stdfs::create_directories(root / "data");
    stdfs::create_directories(root / "list");
    stdfs::remove_all(root / "template");
    stdfs::copy(source / "template", root / "template");
    if (stdfs::exists(db)) return root;
    const stdfs::path temp = root / "data/bench.db.part";
    stdfs::remove(temp);
    sqlite3* h = nullptr;
    sqlite3_open(temp.c_str(), &h);
    std::ifstream schema(source / "data/schema.sql");
    std::stringstream text;
    text << schema.rdbuf();
    Exec(h, text.str());
    Exec(h, "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; BEGIN");
    const std::vector<std::string> words = Vocabulary();
    sqlite3_stmt* sort = nullptr;
    sqlite3_prepare_v2(h, "insert into sort (sort, sort_id, alphabetical_id) values (?,?,?)", -1,
                       &sort, nullptr);
    int word = 0;
    for (int t = 0; t < kTopLevel; ++t) {
      sqlite3_bind_text(sort, 1, ("顶级" + std::to_string(t)).c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int(sort, 2, 0);
      sqlite3_bind_int(sort, 3, 0);
      sqlite3_step(sort);
      sqlite3_reset(sort);
      const int64_t parent = sqlite3_last_insert_rowid(h);
      for (int c = 0; c < kPerTop; ++c) {
        sqlite3_bind_text(sort, 1, words[word++].c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_int64(sort, 2, parent);
        sqlite3_bind_int(sort, 3, 1 + c % 26);
        sqlite3_step(sort);
        sqlite3_reset(sort);
      }
    }
    sqlite3_finalize(sort);
    sqlite3_stmt* rec = nullptr;
    sqlite3_prepare_v2(h,
                       "insert into db (title, content, url, image, source, source_url, click, "
                       "time) values (?,?,?,?,?,?,?,?)",
                       -1, &rec, nullptr);
    std::mt19937 rng(11);
    for (int i = 0; i < kRecords; ++i) {
      const std::string title =
          words[rng() % kWords] + " " + words[rng() % kWords] + " " + words[rng() % kWords];
      const std::string url = "video.test/v/" + std::to_string(i) + ".html";
      char time[32];
      std::snprintf(time, sizeof time, "2024-%02u-%02u %02u:%02u:00",
                    static_cast<unsigned>(1 + rng() % 12), static_cast<unsigned>(1 + rng() % 28),
                    static_cast<unsigned>(rng() % 24), static_cast<unsigned>(rng() % 60));
      sqlite3_bind_text(rec, 1, title.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(rec, 2, "一段视频的介绍文字，大约三十个字，讲这段视频里有什么。", -1,
                        SQLITE_STATIC);
      sqlite3_bind_text(rec, 3, url.c_str(), -1, SQLITE_TRANSIENT);
      if (i % 3)
        sqlite3_bind_text(rec, 4, "img.video.test/p/1.jpg", -1, SQLITE_STATIC);
      else
        sqlite3_bind_null(rec, 4);
      sqlite3_bind_text(rec, 5, "视频站", -1, SQLITE_STATIC);
      sqlite3_bind_text(rec, 6, "video.test", -1, SQLITE_STATIC);
      sqlite3_bind_int(rec, 7, static_cast<int>(rng() % 10000));
      sqlite3_bind_text(rec, 8, time, -1, SQLITE_TRANSIENT);
      sqlite3_step(rec);
      sqlite3_reset(rec);
    }
    sqlite3_finalize(rec);
    Exec(h, "COMMIT; ANALYZE");
    sqlite3_close(h);
    stdfs::rename(temp, db);
    return root;
  }();
  return site;
}

std::shared_ptr<ado::Connection> Open() {
  auto conn = std::make_shared<ado::Connection>();
  conn->Open(u"DBQ=" + FromUtf8((Site() / "data/bench.db").string()) + u";");
  return conn;
}

// As `ostrakan generate` writes: pages flushed together, 256 at a time.
void BM_Rebuild(benchmark::State& state) {
  auto conn = Open();
  const generation::FrontEnd site{Site(), u"视频搜索", true};
  size_t files = 0;
  for (auto _ : state) {
    fs::BatchedWrites batch(fs::FileSystem::Real());
    for (const generation::PageJob& job : generation::WholeSitePlan(*conn)) {
      const auto result = generation::GeneratePage(job.kind, *conn, batch, site, job.id);
      if (result.outcome != generation::Generated::Outcome::Written)
        state.SkipWithError(result.failure.c_str());
      ++files;
      if (batch.staged() >= 256 && !batch.Commit().empty()) state.SkipWithError("commit failed");
    }
    if (!batch.Commit().empty()) state.SkipWithError("commit failed");
  }
  state.counters["files/s"] =
      benchmark::Counter(static_cast<double>(files), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_Rebuild)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

// One flush per page, as a generator page writes its single page.
void BM_RebuildFlushEach(benchmark::State& state) {
  auto conn = Open();
  const generation::FrontEnd site{Site(), u"视频搜索", true};
  size_t files = 0;
  for (auto _ : state) {
    for (const generation::PageJob& job : generation::WholeSitePlan(*conn)) {
      const auto result =
          generation::GeneratePage(job.kind, *conn, fs::FileSystem::Real(), site, job.id);
      if (result.outcome != generation::Generated::Outcome::Written)
        state.SkipWithError(result.failure.c_str());
      ++files;
    }
  }
  state.counters["files/s"] =
      benchmark::Counter(static_cast<double>(files), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_RebuildFlushEach)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

// Templates read from disk, pages kept in memory.
class PagesInMemory : public fs::FileSystem {
 public:
  fs::Failure Read(const std::filesystem::path& file, std::string& bytes) override {
    return fs::FileSystem::Real().Read(file, bytes);
  }
  fs::Failure WriteAtomic(const std::filesystem::path& file, std::string_view bytes) override {
    pages_[file] = std::string(bytes);
    return std::nullopt;
  }
  bool Exists(const std::filesystem::path& path) override {
    return fs::FileSystem::Real().Exists(path);
  }
  fs::Failure MakeFolder(const std::filesystem::path&) override { return std::nullopt; }

 private:
  std::map<std::filesystem::path, std::string> pages_;
};

// The same rebuild with the pages kept in memory: the difference to BM_Rebuild is the cost of
// writing (and flushing) 1,000 files to disk.
void BM_RebuildInMemory(benchmark::State& state) {
  auto conn = Open();
  const generation::FrontEnd site{Site(), u"视频搜索", true};
  PagesInMemory files;
  size_t written = 0;
  for (auto _ : state)
    for (const generation::PageJob& job : generation::WholeSitePlan(*conn))
      written += generation::GeneratePage(job.kind, *conn, files, site, job.id).outcome ==
                 generation::Generated::Outcome::Written;
  state.counters["files/s"] =
      benchmark::Counter(static_cast<double>(written), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_RebuildInMemory)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

// The record lists alone, through the generator's own query and markup (no template, no file).
void BM_RecordLists(benchmark::State& state) {
  auto conn = Open();
  std::vector<std::u16string> names;
  for (const auto& top : categories::TopLevel(*conn))
    for (const auto& c : categories::ChildrenOf(*conn, Variant(top.id))) names.push_back(c.name);
  for (auto _ : state)
    for (const auto& name : names)
      benchmark::DoNotOptimize(generation::RecordList(*conn, name, true));
}
BENCHMARK(BM_RecordLists)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

// The same queries, bare: the categories, the letter groups and the record lists.
void BM_BareQueries(benchmark::State& state) {
  sqlite3* h = nullptr;
  sqlite3_open_v2((Site() / "data/bench.db").c_str(), &h, SQLITE_OPEN_READONLY, nullptr);
  auto run = [&](const char* sql, const std::string& bind, bool text) {
    sqlite3_stmt* s = nullptr;
    sqlite3_prepare_v2(h, sql, -1, &s, nullptr);
    if (text)
      sqlite3_bind_text(s, 1, bind.c_str(), -1, SQLITE_TRANSIENT);
    else if (!bind.empty())
      sqlite3_bind_int(s, 1, std::stoi(bind));
    std::vector<std::string> names;
    while (sqlite3_step(s) == SQLITE_ROW)
      for (int i = 0; i < sqlite3_column_count(s); ++i) {
        const unsigned char* v = sqlite3_column_text(s, i);
        if (i == 1 && v) names.emplace_back(reinterpret_cast<const char*>(v));
        benchmark::DoNotOptimize(v);
      }
    sqlite3_finalize(s);
    return names;
  };
  for (auto _ : state) {
    std::vector<std::string> tops;
    sqlite3_stmt* s = nullptr;
    sqlite3_prepare_v2(h, "select id from sort where sort_id=0 order by id", -1, &s, nullptr);
    while (sqlite3_step(s) == SQLITE_ROW) tops.push_back(std::to_string(sqlite3_column_int(s, 0)));
    sqlite3_finalize(s);
    const char* find = "select id,sort,sort_id,alphabetical_id from sort where id=?1";
    for (const std::string& top : tops) {
      run(find, top, false);
      run("select id,alphabetical from alphabetical order by id", "", false);
      run("select id,sort,sort_id,alphabetical_id from sort where sort_id=?1 order by sort, id",
          top, false);
      for (const std::string& name :
           run("select id,sort,sort_id,alphabetical_id from sort where sort_id=?1 order by id", top,
               false)) {
        run(find, top, false);  // stands in for the page's own lookup by id
        run("select id,title,content,url,image,source,source_url,click,time from db where title "
            "like '%' || ?1 || '%' order by click desc,time desc limit 100",
            name, true);
      }
    }
  }
  sqlite3_close(h);
}
BENCHMARK(BM_BareQueries)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

}  // namespace
