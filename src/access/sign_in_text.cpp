#include "access/sign_in_text.h"

#include <string>

#include "frame/filtration.h"

namespace ostrakan {

SignInTextFault SignInTextFaultOf(std::u16string_view text) {
  if (text.empty()) return SignInTextFault::kEmpty;
  if (Filter(FilterKind::Strict, std::u16string(text)) != text)
    return SignInTextFault::kRemovedAtSignIn;
  return SignInTextFault::kNone;
}

}  // namespace ostrakan
