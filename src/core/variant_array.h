// An array of Variants held as an object (the runtime's arrays, such as the MD5 bit tables).
#pragma once

#include <vector>

#include "core/variant.h"

namespace ostrakan {

class VariantArray : public Object {
 public:
  VariantArray() = default;
  explicit VariantArray(std::vector<Variant> items) : items(std::move(items)) {}
  std::vector<Variant> items;
};

}  // namespace ostrakan
