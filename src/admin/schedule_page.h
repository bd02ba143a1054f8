// gather_schedule.asp (Ostrakan.Class171): the schedules page (定时采集): lists the site's
// gathering schedules, adds one (action=add, posted), edits one (action=edit&id= fills the
// form, action=save&id= posted stores it) and removes one (action=del&id=). What a schedule
// means is in gathering/schedule.h; `ostrakan worker` queues them when due.
#pragma once

#include "frame/database_page.h"
#include "gathering/schedule.h"

namespace ostrakan::admin {

class SchedulePage : public DatabasePage {
 public:
  SchedulePage();
  void Act();
  void ListSchedules();
  void WriteForm();

 private:
  // The posted form as a schedule; "" or why it cannot be one.
  std::u16string ReadForm(gathering::Schedule& schedule) const;

  Markup said_;
  gathering::Schedule editing_;
  bool haveEditing_ = false;
  bool typed_ = false;  // a refused form: written back as posted
};

}  // namespace ostrakan::admin
