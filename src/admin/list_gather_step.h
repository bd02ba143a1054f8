// gather_list_db_ok.asp (Ostrakan.Class54): one step of a list gathering run. Gathers the
// result page Page_Start into the video table and continues with the next page after a
// second; the step for Page_Start = Page_End only announces the end (its page is not stored).
#pragma once

#include "admin/list_gathering_page.h"

namespace ostrakan::admin {

class ListGatherStep : public ListGatheringPage {
 public:
  ListGatherStep();
  Variant conn, connstr, id, rs;
  // The record store: Add(title, content, url, siteurl, image), Edit(id, title, content).
  void Add(const Variant& title, const Variant& content, const Variant& url, const Variant& siteurl,
           const Variant& image);
  void Edit(const Variant& recordId, const Variant& title, const Variant& content);

 protected:
  void FirstBlock() override;

 private:
  void Store(const gathering::ListEntry& entry);
};

}  // namespace ostrakan::admin
