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
  std::u16string p(path);
  for (auto& c : p)
    if (c == u'\\') c = u'/';
  if (p.starts_with(u"/")) {
    virt = p;
  } else {
    virt = pagePath_.substr(0, pagePath_.rfind(u'/') + 1) + p;
  }
  std::vector<std::u16string> parts;
  size_t start = 0;
  while (start <= virt.size()) {
    size_t end = virt.find(u'/', start);
    if (end == std::u16string::npos) end = virt.size();
    std::u16string part = virt.substr(start, end - start);
    if (part == u"..") {
      if (parts.empty())
        throw ScriptError(static_cast<int32_t>(0x80004005),
                          u"The '..' characters are not allowed.");
      parts.pop_back();
    } else if (!part.empty() && part != u".") {
      parts.push_back(part);
    }
    start = end + 1;
  }
  std::filesystem::path out = siteRoot_;
  for (const auto& part : parts) out /= ToUtf8(part);
  return FromUtf8(out.string());
}

Variant Server::CreateObject(std::u16string_view progId) const {
  return Variant(factory_.Create(progId));
}

std::u16string Server::URLEncode(std::u16string_view s) const {
  return ServerUrlEncode(s, text::kAnsiCodePage);
}

}  // namespace ostrakan
