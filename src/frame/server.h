// The Server object: paths, object creation and URL encoding for the page being run.
#pragma once

#include <filesystem>
#include <string>

#include "core/variant.h"

namespace ostrakan {

class ObjectFactory;

class Server : public Object {
 public:
  // siteRoot: the folder served as "/"; pagePath: the virtual path of the running page
  // ("/admin/login.asp"), from which relative paths are mapped.
  Server(std::filesystem::path siteRoot, std::u16string pagePath, const ObjectFactory& factory);

  // A path relative to the page's folder, or absolute from the site root ("/x"), as a
  // file-system path. A path that leaves the site root raises an error.
  std::u16string MapPath(std::u16string_view path) const;
  Variant CreateObject(std::u16string_view progId) const;
  // Percent-encoding of the text's bytes in the ANSI code page, blanks as "+".
  std::u16string URLEncode(std::u16string_view text) const;
  int ScriptTimeout = 90;  // seconds; pages that run long raise it

  const std::filesystem::path& siteRoot() const { return siteRoot_; }
  const std::u16string& pagePath() const { return pagePath_; }
  const ObjectFactory& factory() const { return factory_; }

 private:
  std::filesystem::path siteRoot_;
  std::u16string pagePath_;
  const ObjectFactory& factory_;
};

}  // namespace ostrakan
