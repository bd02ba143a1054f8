// A std::u16string (a database or request value) does not convert to Markup.
#include "core/variant.h"
#include "frame/markup.h"

ostrakan::Markup FromText(const ostrakan::Variant& stored) {
  ostrakan::Markup cell = ostrakan::TextOf(stored);
  return cell;
}
