#include "frame/request.h"

namespace ostrakan {

Variant Request::ServerVariables(std::u16string_view name) const {
  Variant v = serverVariables.Get(name);
  return v.IsEmpty() ? Variant(u"") : v;
}

Variant Request::Item(std::u16string_view name) const {
  for (const KeyedValues* c : {&queryString, &form, &cookies, &serverVariables})
    if (c->Has(name)) return c->Get(name);
  return {};
}

const UploadedFile* Request::File(std::u16string_view name) const {
  for (const auto& [field, file] : files)
    if (IEquals(field, name)) return &file;
  return nullptr;
}

}  // namespace ostrakan
