// The control of the checks beside it: the same code with UTF-16 text and a real bool compiles.
#include "frame/response.h"

void WriteText(ostrakan::Response& response) {
  response.Write(u"x");
  response.Write(ostrakan::Variant(true));
  const int* p = nullptr;
  response.Write(ostrakan::Variant(p != nullptr));
}
