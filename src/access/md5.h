// MD5 digest of administrator passwords.
//
// The message is built from the text's characters, not from its bytes: each UTF-16 unit
// contributes its ANSI (936) code as a signed 16-bit value, sign-extended to 32 bits, at one
// byte position. A double-byte character therefore spills its sign bits into the higher bytes
// of its message word. Stored digests depend on this rule, so it must not change. For text of
// single-byte characters the result is plain RFC 1321 MD5 over the text's ANSI bytes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ostrakan {

// 32 lower-case hexadecimal digits: the state words A, B, C, D, each byte low to high.
std::u16string Md5(std::u16string_view text);

// The component's bit tables (properties m_lOnBits and m_l2Power), 31 entries each:
// entry i of OnBitsTable is 2^(i+1) - 1, entry i of TwoPowerTable is 2^i.
std::vector<int32_t> OnBitsTable();
std::vector<int32_t> TwoPowerTable();

}  // namespace ostrakan
