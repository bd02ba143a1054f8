// The rewriting of Access statements into SQLite: any text is rewritten or refused with a
// script error, and never read beyond its end.
#if __has_include("platform/ado/statement_adapter.h")
#include "platform/ado/statement_adapter.h"
#else
#include "platform/ado/recordset.h"
#endif
#include "core/script_error.h"
#include "fuzz/fuzz_text.h"

using namespace ostrakan;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::u16string sql = fuzz::Utf16(fuzz::Bytes(data, size));
  try {
    ado::AdaptStatement(sql);
  } catch (const ScriptError&) {
  }
  return 0;
}
