// What the start pages of a gathering run share: the rule's row read by id, and its id and
// site name written into the start form.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class GatherStartPage : public DatabasePage {
 public:
  Variant rs, id, web;
  void WriteRuleId();    // for the form's hidden field
  void WriteSiteName();  // as text

 protected:
  // `table`: the rule table, gather_list_web or gather_id_web.
  GatherStartPage(std::u16string context, std::u16string table);
  // Reads the rule that `requested` names (a bad or unknown id ends the page): `web` becomes
  // its site name; returns its id. Closes the record set and the connection.
  Variant ReadRule(const Variant& requested);

 private:
  std::u16string table_;
};

}  // namespace ostrakan::admin
