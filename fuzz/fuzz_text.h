// Turning fuzzer bytes into the inputs of the code under test.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ostrakan::fuzz {

inline std::string_view Bytes(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Pairs of bytes as UTF-16 units (unpaired surrogates included, as any text can hold them).
inline std::u16string Utf16(std::string_view bytes) {
  std::u16string out;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2)
    out += static_cast<char16_t>(static_cast<uint8_t>(bytes[i]) | static_cast<uint8_t>(bytes[i + 1])
                                                                      << 8);
  return out;
}

// Splits at the first `sep`; `rest` keeps what follows it.
inline std::string_view Take(std::string_view& rest, char sep) {
  size_t at = rest.find(sep);
  std::string_view head = rest.substr(0, at);
  rest = at == std::string_view::npos ? std::string_view() : rest.substr(at + 1);
  return head;
}

}  // namespace ostrakan::fuzz
