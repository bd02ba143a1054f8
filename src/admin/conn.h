// conn.asp (Ostrakan.Class15) and connstr.asp (Ostrakan.Class16): components that only open a
// connection, to the database named by DB or by ODB (set by the page file beforehand).
#pragma once

#include "frame/component.h"

namespace ostrakan::admin {

class Conn : public Component {
 public:
  Conn();
  Variant conn, connstr, DB;
  void InitFunction1();
};

class Connstr : public Component {
 public:
  Connstr();
  Variant conn, connstr, ODB;
  void InitFunction1();
};

}  // namespace ostrakan::admin
