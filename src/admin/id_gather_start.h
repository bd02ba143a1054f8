// gather_id_db.asp (Ostrakan.Class52): the start form of an ID gathering run for one rule; the
// page file sets `id` from the request.
#pragma once

#include "admin/gather_start_page.h"

namespace ostrakan::admin {

class IdGatherStart : public GatherStartPage {
 public:
  IdGatherStart();
};

}  // namespace ostrakan::admin
