// The object factory behind Server.CreateObject: ProgIDs (case-insensitive) to constructors.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/variant.h"

namespace ostrakan {

class ObjectFactory {
 public:
  using Maker = std::function<ObjectRef()>;

  void Register(std::u16string progId, Maker maker);
  void Unregister(std::u16string_view progId);
  bool Has(std::u16string_view progId) const;
  // A new object, or error 429 "ActiveX component can't create object" for unknown ProgIDs.
  ObjectRef Create(std::u16string_view progId) const;

  // Every host object of the platform: "ADODB.Connection", "ADODB.Recordset", "ADODB.Stream",
  // the XML HTTP ProgIDs, "Scripting.FileSystemObject", "MSScriptControl.ScriptControl".
  static ObjectFactory WithPlatformObjects();
  static const ObjectFactory& Default();

 private:
  std::vector<std::pair<std::u16string, Maker>> makers_;
};

// A script control that only remembers its Language: the ProgID stays creatable, inert.
class ScriptControl : public Object {
 public:
  std::u16string Language;
};

}  // namespace ostrakan
