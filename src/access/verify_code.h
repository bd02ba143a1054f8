// The sign-in verify code: four random digits and the BMP picture that shows them.
//
// The picture is not drawn. It is put together from two prepared files: "head.fix" (the BMP
// headers of a 40 x 10, 24-bit picture) and "body.Fix" (ten digit pictures of 320 bytes in the
// order 9, 8, ..., 0; each is 10 rows of 32 bytes, of which the first 30 are 10 BGR pixels,
// rows bottom-up as BMP stores them).
#pragma once

#include <string>
#include <string_view>

#include "core/variant.h"

namespace ostrakan {

constexpr size_t kVerifyCodeLength = 4;
constexpr size_t kDigitPictureBytes = 320;  // 10 rows of 32 bytes
constexpr size_t kDigitRowBytes = 32;
constexpr size_t kDigitUsedRowBytes = 30;  // 10 pixels of 3 bytes
constexpr size_t kDigitRows = 10;
constexpr size_t kVerifyRowBytes = 120;  // 40 pixels of 3 bytes
constexpr size_t kVerifyPixelBytes = kVerifyRowBytes * kDigitRows;

// One digit of the code from a random number in [0, 1): random * 9 + 48 rounded half to even
// as a character code, so '0' and '9' come up half as often as the other digits.
char16_t VerifyDigit(double random);

// Four digits drawn with VerifyDigit from a generator seeded once per thread.
std::u16string NewVerifyCode();

// The finished picture: head followed by the 1200 pixel bytes that show the first four
// characters of code (digits). It is composed with the byte-stream moves of the original page
// (copy, seek, copy) and fails the same way: a body too short for a move raises error 3219,
// a code that is not four digits raises type mismatch.
Bytes ComposeVerifyImage(const Bytes& head, const Bytes& body, std::u16string_view code);

}  // namespace ostrakan
