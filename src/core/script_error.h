// Errors as the scripting runtime raises them: a number and a description.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace ostrakan {

struct ScriptError : std::runtime_error {
  ScriptError(int32_t number, std::u16string description);
  int32_t number;
  std::u16string description;
};

// The number raised right after Response.End so that every enclosing block passes it on.
constexpr int32_t kResponseEndedError = -13572468;  // 0xFF30E68C

// Thrown only through EndResponse(); never logged, always passed on to the page file.
struct ResponseEnded : ScriptError {
  ResponseEnded() : ScriptError(kResponseEndedError, u"") {}
};

// The runtime's common errors.
ScriptError InvalidCall();       // 5  Invalid procedure call or argument
ScriptError Overflow();          // 6  Overflow
ScriptError TypeMismatch();      // 13 Type mismatch
ScriptError InvalidUseOfNull();  // 94 Invalid use of Null
ScriptError ObjectRequired();    // 424 Object required

}  // namespace ostrakan
