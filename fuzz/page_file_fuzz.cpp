// The page-file parser and the assignment files read with it (Setup.asp, rule files): any
// text gives a parsed page or a syntax error, never anything else.
#include "engine/assignment_file.h"
#include "engine/page_file.h"
#include "fuzz/fuzz_text.h"
#include "platform/text/codepage.h"

using namespace ostrakan;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::u16string text = text::Decode(fuzz::Bytes(data, size), text::kAnsiCodePage);
  try {
    engine::ParsePageFile(text);
  } catch (const engine::PageSyntaxError&) {
  }
  try {
    engine::ParseAssignments(text);
  } catch (const engine::AssignmentSyntaxError&) {
  }
  try {
    engine::ParseCaseArms(text);
  } catch (const engine::AssignmentSyntaxError&) {
  }
  return 0;
}
