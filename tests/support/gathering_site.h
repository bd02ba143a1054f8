// A fresh site made by `ostrakan init` beside the fixture remote site, for the tests of the
// gathering commands, the queue and the schedules: a list rule over result pages /r/<n>.html
// (four entries each) and an ID rule over pages /id/<n>.html, n from 1 to 40.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "engine/commands.h"
#include "engine/worker_command.h"
#include "support/id_rule_fixture.h"
#include "support/list_rule_fixture.h"
#include "support/page_harness.h"
#include "support/remote_site.h"

namespace ostrakan::testing {

class GatheringSite : public ::testing::Test {
 protected:
  void SetUp() override {
    std::ostringstream out, err;
    ASSERT_EQ(engine::RunInit({site, SourceDir() / "site", "admin", "secret123"}, out, err), 0)
        << err.str();
    for (int n = 1; n <= 40; ++n) {
      remote.Set("/r/" + std::to_string(n) + ".html", {200, FixtureResultPage(n, 4)});
      remote.Set("/id/" + std::to_string(n) + ".html", {200, FixtureIdPage(n)});
    }
    listRule = InsertFixtureRule(db, remote.Url("/r/[page].html?q=[keyword]"));
    idRule = InsertFixtureIdRule(db, remote.Url("/id/[id].html"));
  }
  // Runs `ostrakan worker --once --json` in this process; the last line it wrote.
  std::string Work(std::shared_ptr<http::Fetcher> fetcher = nullptr) {
    engine::WorkerOptions o;
    o.site = site;
    o.once = o.json = true;
    o.fetcher = std::move(fetcher);
    std::ostringstream out, err;
    EXPECT_EQ(engine::RunWorker(o, out, err), 0) << err.str();
    const std::string text = out.str();
    return text.substr(text.rfind('\n', text.size() - 2) + 1);
  }
  std::string Value(const std::string& sql) { return SqlValue(db, sql); }
  // How many requests the remote site had for addresses starting with `prefix`.
  int Asked(const std::string& prefix) {
    int n = 0;
    for (const auto& r : remote.Requests()) n += r.starts_with(prefix);
    return n;
  }
  // Starts the ostrakan program with `args` (after "ostrakan"), waits until it asks the remote
  // site for `target` and `settled()` holds (a run fetches its next page while it stores the
  // last one), and kills it there, as a crash or a lost machine would.
  void KillWhenAsked(
      std::vector<std::string> args, const std::string& target,
      const std::function<bool()>& settled = [] { return true; }) {
    std::vector<char*> argv{const_cast<char*>("ostrakan")};
    for (std::string& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
      std::freopen("/dev/null", "w", stdout);
      execv(OSTRAKAN_BINARY, argv.data());
      _exit(127);
    }
    for (int i = 0; i < 1000 && !(Asked(target) && settled()); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_TRUE(Asked(target) && settled());
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }

  TempDir dir;
  const std::filesystem::path site = dir.path() / "site", db = site / "data/ostrakan.db";
  RemoteSite remote;
  std::string listRule, idRule;
};

}  // namespace ostrakan::testing
