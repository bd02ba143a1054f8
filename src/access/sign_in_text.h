// Names and passwords that can be typed at sign-in. The sign-in page passes what is typed
// through the strict filter (blanks, control characters and # % ' " ( ) * + ; < > [ ] are
// removed), so a stored name or password holding one of them could never be typed back.
// `ostrakan init`, `ostrakan passwd` and the account page refuse such text with this one check
// instead of storing it changed.
#pragma once

#include <string_view>

namespace ostrakan {

enum class SignInTextFault {
  kNone,
  kEmpty,
  kRemovedAtSignIn,  // holds a character that the sign-in filter removes
};

SignInTextFault SignInTextFaultOf(std::u16string_view text);

}  // namespace ostrakan
