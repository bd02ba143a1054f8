// Whether a page or an output holds a fragment, as an assertion that shows both when the answer
// is not the expected one (EXPECT_TRUE(Holds(page, u"...")) or EXPECT_FALSE).
#pragma once

#include <gtest/gtest.h>

#include <string_view>

#include "core/variant.h"

namespace ostrakan::testing {

inline ::testing::AssertionResult Holds(std::string_view text, std::string_view part) {
  const bool found = text.find(part) != std::string_view::npos;
  return (found ? ::testing::AssertionSuccess() : ::testing::AssertionFailure())
         << "\"" << part << (found ? "\" is in:\n" : "\" is not in:\n") << text;
}

inline ::testing::AssertionResult Holds(std::u16string_view text, std::u16string_view part) {
  return Holds(ToUtf8(text), ToUtf8(part));
}

}  // namespace ostrakan::testing
