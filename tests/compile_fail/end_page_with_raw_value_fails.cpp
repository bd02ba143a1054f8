// Ending a page with a message built from a raw value does not compile either.
#include "frame/page_blocks.h"

void Refuse(const ostrakan::Variant& verifyid) {
  ostrakan::WriteAndEnd(u"<Script>alert('" + ostrakan::TextOf(verifyid) + u"')</Script>");
}
