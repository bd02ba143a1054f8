// create_all.asp (Ostrakan.Class21): the start page of the whole-site rebuild; the page file
// holds the start button that opens create_all_instruction.asp.
#pragma once

#include "frame/database_page.h"

namespace ostrakan::admin {

class SiteRebuildStart : public DatabasePage {
 public:
  SiteRebuildStart() : DatabasePage(u"\\admin\\create_all") {}
};

}  // namespace ostrakan::admin
