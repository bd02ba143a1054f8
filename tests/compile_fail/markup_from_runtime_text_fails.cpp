// Markup cannot be made from text known only at run time: not from a string, and not from a
// string view through the constant-text door (its constructor runs at compile time only).
#include "core/variant.h"
#include "frame/markup.h"

ostrakan::Markup FromView(std::u16string_view requestValue) {
  return ostrakan::Markup(requestValue);
}
