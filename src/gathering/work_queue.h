// The workers' side of the run queue. A queued run is one row of gather_run and one row of
// gather_unit per page or ID. A worker takes one unit at a time by a lease: a conditional
// update that succeeds only while nobody else holds an unexpired lease on it, so workers in
// several processes, or on several machines sharing a database, never fetch or store a unit
// twice. A worker that dies leaves its lease to expire; another then takes the unit.
//
// Politeness: a unit is only taken together with a lease on its host (gather_host), released
// after the fetch with the time before which the host may not be asked again (the run's pause).
// So at most one fetch per remote host is under way across all workers, and different hosts
// proceed in parallel.
//
// A failed fetch is put back with a growing pause (attempt n waits n times the run's retry
// pause) until the run's retries are spent; it is then kept as a failed unit of the run.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

#include "platform/ado/connection.h"
#include "platform/http/fetcher.h"

namespace ostrakan::gathering {

struct WorkOptions {
  bool once = false;                  // stop when no queued unit is left; otherwise wait for work
  std::string owner;                  // the lease owner's name; a fresh one when empty
  long leaseMs = 180000;              // longer than any one fetch may take (the fetcher's limits)
  int idlePollMs = 1000;              // how often an idle worker looks for work
  std::atomic<bool>* stop = nullptr;  // set from outside to end the worker after its unit
};

struct WorkSummary {
  long runs = 0;  // runs this worker took part in
  long pages = 0, inserted = 0, updated = 0, failed = 0, unmatched = 0;
};

// Works the queue of the database on `conn` until it is empty (once) or `stop` is set, queuing
// the runs of due schedules (gathering/schedule.h) first and then about once a second.
// `unitDone` (may be empty) hears of each unit this worker finished.
WorkSummary WorkQueue(
    ado::Connection& conn, http::Fetcher& fetcher, const WorkOptions& options,
    const std::function<void(long long run, long unit, const std::string& what)>& unitDone = {});

// Puts every failed unit of the run back in the queue (the runs page); how many.
long RequeueFailed(ado::Connection& conn, long long runId);

// Stops a run: its queued units are dropped and it is marked "stopped". False when the run is
// not queued or running.
bool StopRun(ado::Connection& conn, long long runId);

// Milliseconds since the epoch: lease times, comparable between machines with set clocks.
long long WallMs();

}  // namespace ostrakan::gathering
