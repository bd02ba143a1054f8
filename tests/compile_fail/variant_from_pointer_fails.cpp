// A pointer must not become a Boolean variant.
#include "core/variant.h"

ostrakan::Variant FromPointer(const int* p) {
  return p;
}
