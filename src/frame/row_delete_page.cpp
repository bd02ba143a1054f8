#include "frame/row_delete_page.h"

#include "frame/row_deletes.h"

namespace ostrakan {

RowDeletePage::RowDeletePage(std::u16string context, std::u16string_view table, Answer afterOne,
                             Answer afterTicked)
    : DatabasePage(std::move(context)),
      table_(table),
      afterOne_(std::move(afterOne)),
      afterTicked_(std::move(afterTicked)) {
  Describe<RowDeletePage>([](Describer<RowDeletePage>& m) {
    m.Block(u"InitFunction3", [](RowDeletePage& page) {
      const std::u16string action = TextOf(CurrentRequest().QueryString(u"action"));
      if (action == u"del")
        page.DeleteOne();
      else if (action == u"alldel" && page.afterTicked_)
        page.DeleteTicked();
    });
    m.Block(u"delete", &RowDeletePage::DeleteOne);
  });
}

void RowDeletePage::DeleteOne() {
  Guard(u"delete", [&] {
    DeleteRequestedRow(conn, table_);
    CurrentResponse().Write(afterOne_());
  });
}

void RowDeletePage::DeleteTicked() {
  Guard(u"alldelete", [&] {
    DeleteTickedRows(conn, table_);
    CurrentResponse().Write(afterTicked_());
  });
}

}  // namespace ostrakan
