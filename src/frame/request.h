// The Request object: the decoded query string, form, cookies and server variables of one
// request. The page engine fills it; tests fill it directly.
#pragma once

#include "frame/keyed_values.h"

namespace ostrakan {

class Request : public Object {
 public:
  KeyedValues queryString;
  KeyedValues form;
  KeyedValues cookies;
  KeyedValues serverVariables;  // REMOTE_ADDR, REQUEST_METHOD, URL, QUERY_STRING, HTTP_* ...

  Variant QueryString(std::u16string_view name) const { return queryString.Get(name); }
  Variant Form(std::u16string_view name) const { return form.Get(name); }
  Variant ServerVariables(std::u16string_view name) const;  // unknown names give ""
  // Request(name): the query string, then the form, the cookies and the server variables.
  Variant Item(std::u16string_view name) const;
};

}  // namespace ostrakan
