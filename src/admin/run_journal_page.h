// gather_run_list.asp (Ostrakan.Class170): the runs page (采集记录): every run of the journal,
// newest first, with its rule, keyword or range, state, pages done of total and counts; a run
// queued or under way can be stopped, a run's failed pages queued again. The page refreshes
// itself while runs are under way.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class RunJournalPage : public DatabasePage {
 public:
  RunJournalPage();
  // action=stop|requeue with id: acts, then lists (the list says what was done).
  void Act();
  void ListRuns();
  // <meta http-equiv="refresh"> while a run is queued or running.
  void WriteRefresh();

 private:
  Markup done_;
};

}  // namespace ostrakan::admin
