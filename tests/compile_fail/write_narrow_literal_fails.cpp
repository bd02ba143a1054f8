// A narrow literal is not text: writing one must not compile (it used to write "True").
#include "frame/response.h"

void WriteNarrow(ostrakan::Response& response) {
  response.Write("x");
}
