#include "platform/object_factory.h"

#include <memory>

#include "platform/ado/connection.h"
#include "platform/ado/recordset.h"
#include "platform/http/xml_http.h"
#include "platform/text/stream.h"

namespace ostrakan {

void ObjectFactory::Register(std::u16string progId, Maker maker) {
  for (auto& entry : makers_) {
    if (IEquals(entry.first, progId)) {
      entry.second = std::move(maker);
      return;
    }
  }
  makers_.emplace_back(std::move(progId), std::move(maker));
}

void ObjectFactory::Unregister(std::u16string_view progId) {
  std::erase_if(makers_, [&](const auto& entry) { return IEquals(entry.first, progId); });
}

bool ObjectFactory::Has(std::u16string_view progId) const {
  for (const auto& entry : makers_) {
    if (IEquals(entry.first, progId)) return true;
  }
  return false;
}

ObjectRef ObjectFactory::Create(std::u16string_view progId) const {
  for (const auto& entry : makers_) {
    if (IEquals(entry.first, progId)) return entry.second();
  }
  throw ScriptError(429, u"ActiveX component can't create object");
}

ObjectFactory ObjectFactory::WithPlatformObjects() {
  ObjectFactory factory;
  factory.Register(u"ADODB.Connection", [] { return std::make_shared<ado::Connection>(); });
  factory.Register(u"ADODB.Recordset", [] { return std::make_shared<ado::Recordset>(); });
  factory.Register(u"ADODB.Stream", [] { return std::make_shared<Stream>(); });
  factory.Register(u"MSScriptControl.ScriptControl",
                   [] { return std::make_shared<ScriptControl>(); });
  // The XML HTTP request objects, each over the fetcher in force when it is created.
  for (const char16_t* progId : http::kXmlHttpProgIds)
    factory.Register(progId,
                     [] { return std::make_shared<http::XmlHttp>(http::DefaultFetcher()); });
  // "Scripting.FileSystemObject" registers here once platform/fs provides it.
  return factory;
}

const ObjectFactory& ObjectFactory::Default() {
  static const ObjectFactory factory = WithPlatformObjects();
  return factory;
}

}  // namespace ostrakan
