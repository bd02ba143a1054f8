// Reading what a list page wrote: the ids of its check boxes.
#pragma once

#include <string>
#include <vector>

#include "core/variant.h"

namespace ostrakan::testing {

// The ids of the check boxes in a page, in page order.
inline std::vector<int> Ids(const std::u16string& text) {
  std::vector<int> ids;
  for (size_t at = text.find(u"name='id'"); at != std::u16string::npos;
       at = text.find(u"name='id'", at + 1)) {
    size_t value = text.find(u"value='", at) + 7;
    ids.push_back(std::stoi(ToUtf8(text.substr(value, text.find(u'\'', value) - value))));
  }
  return ids;
}

}  // namespace ostrakan::testing
