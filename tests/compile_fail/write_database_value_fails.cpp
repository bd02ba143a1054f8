// A value read from the database (a Variant) cannot be written without saying how it lands.
#include "frame/response.h"

void WriteStored(ostrakan::Response& response, const ostrakan::Variant& stored) {
  response.Write(stored);
}
