// The page behind the delete links and forms of a list: by QueryString "action", "del"
// deletes the row named by "id" (block "delete"), and "alldel", on pages that offer it, the
// ticked rows (block "alldelete"); then the page's answer. Any other action does nothing.
#pragma once

#include <functional>
#include <string_view>

#include "frame/database_page.h"
#include "frame/markup.h"

namespace ostrakan {

class RowDeletePage : public DatabasePage {
 public:
  // The answers after a delete; `afterTicked` empty for a page without the batch delete.
  using Answer = std::function<Markup()>;

 protected:
  RowDeletePage(std::u16string context, std::u16string_view table, Answer afterOne,
                Answer afterTicked = {});
  // The block "alldelete", which a page with the batch delete (an `afterTicked` answer)
  // offers: OfferTickedDelete<RecordDelete>() in its constructor.
  template <class Page>
  void OfferTickedDelete() {
    Describe<Page>([](Describer<Page>& m) { m.Block(u"alldelete", &RowDeletePage::DeleteTicked); });
  }

 private:
  void DeleteOne();
  void DeleteTicked();

  std::u16string_view table_;
  Answer afterOne_, afterTicked_;
};

}  // namespace ostrakan
