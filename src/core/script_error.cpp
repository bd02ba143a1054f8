#include "core/script_error.h"

#include "core/variant.h"

namespace ostrakan {

ScriptError::ScriptError(int32_t n, std::u16string d)
    : std::runtime_error(ToUtf8(d)), number(n), description(std::move(d)) {}

ScriptError InvalidCall() {
  return {5, u"Invalid procedure call or argument"};
}
ScriptError Overflow() {
  return {6, u"Overflow"};
}
ScriptError TypeMismatch() {
  return {13, u"Type mismatch"};
}
ScriptError InvalidUseOfNull() {
  return {94, u"Invalid use of Null"};
}
ScriptError ObjectRequired() {
  return {424, u"Object required"};
}

}  // namespace ostrakan
