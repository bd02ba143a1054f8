// The Request object: the decoded query string, form, cookies and server variables of one
// request. The page engine fills it; tests fill it directly.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "frame/keyed_values.h"

namespace ostrakan {

// A file sent with a multipart/form-data form: the name the browser gave it and its bytes.
struct UploadedFile {
  std::u16string fileName;
  std::string bytes;
};

class Request : public Object {
 public:
  KeyedValues queryString;
  KeyedValues form;
  KeyedValues cookies;
  KeyedValues serverVariables;  // REMOTE_ADDR, REQUEST_METHOD, URL, QUERY_STRING, HTTP_* ...
  std::vector<std::pair<std::u16string, UploadedFile>> files;  // by field name, in order

  // The first file sent under the field `name` (any case), or nullptr.
  const UploadedFile* File(std::u16string_view name) const;

  Variant QueryString(std::u16string_view name) const { return queryString.Get(name); }
  Variant Form(std::u16string_view name) const { return form.Get(name); }
  Variant ServerVariables(std::u16string_view name) const;  // unknown names give ""
  // Request(name): the query string, then the form, the cookies and the server variables.
  Variant Item(std::u16string_view name) const;
};

}  // namespace ostrakan
