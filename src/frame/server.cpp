#include "frame/server.h"

#include "frame/escape.h"
#include "platform/object_factory.h"
#include "platform/text/codepage.h"

namespace ostrakan {

Server::Server(std::filesystem::path siteRoot, std::u16string pagePath,
               const ObjectFactory& factory)
    : siteRoot_(std::move(siteRoot)), pagePath_(std::move(pagePath)), factory_(factory) {}

std::u16string Server::MapPath(std::u16string_view path) const {
  // Work on the virtual path: absolute from the root, or relative to the page's folder.
  std::u16string virt;
  if (path.empty() || (path[0] != u'/' && path[0] != u'\\'))
    virt = pagePath_.substr(0, pagePath_.rfind(u'/') + 1);
  const size_t given = virt.size();
  virt += path;
  for (size_t i = given; i < virt.size(); ++i)
    if (virt[i] == u'\\') virt[i] = u'/';
  // The folders of the path, '.' and empty ones dropped and '..' taken back, joined by '/'.
  std::u16string joined;
  size_t start = 0;
  while (start <= virt.size()) {
    size_t end = virt.find(u'/', start);
    if (end == std::u16string::npos) end = virt.size();
    const std::u16string_view part = std::u16string_view(virt).substr(start, end - start);
    if (part == u"..") {
      if (joined.empty())
        throw ScriptError(static_cast<int32_t>(0x80004005),
                          u"The '..' characters are not allowed.");
      const size_t last = joined.rfind(u'/');
      joined.resize(last == std::u16string::npos ? 0 : last);
    } else if (!part.empty() && part != u".") {
      if (!joined.empty()) joined += u'/';
      joined += part;
    }
    start = end + 1;
  }
  // Appended to the root as path /= part would: a separator unless the root ends in one.
  std::string out = siteRoot_.string();
  if (!joined.empty()) {
    if (!out.empty() && out.back() != '/') out += '/';
    out += ToUtf8(joined);
  }
  return FromUtf8(out);
}

Variant Server::CreateObject(std::u16string_view progId) const {
  return Variant(factory_.Create(progId));
}

std::u16string Server::URLEncode(std::u16string_view s) const {
  return ServerUrlEncode(s, text::kAnsiCodePage);
}

}  // namespace ostrakan
