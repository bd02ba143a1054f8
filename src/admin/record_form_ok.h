// What the entry form's and the edit form's receiving pages (db_add_ok.asp, db_edit_ok.asp)
// share: the posted record through the record filter, stored unless another record has its
// address.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class RecordFormOk : public DatabasePage {
 public:
  Variant rs, Content, Url;

 protected:
  explicit RecordFormOk(std::u16string context);

  // Stores the posted record as a new row when `id` is Empty, else into the row `id` (the page
  // ends with the missing-record alert when there is none), then closes `rs` and `conn`. When
  // another record has the address, nothing is stored and the page ends with the duplicate
  // alert. Content and Url keep the filtered description and the address as stored.
  void StorePostedRecord(const Variant& id);
};

}  // namespace ostrakan::admin
