// The binary/text stream object ("ADODB.Stream"): a byte buffer with a position.
// Type 1 is binary, 2 is text (Charset names the encoding of ReadText/WriteText).
#pragma once

#include <string>

#include "core/variant.h"

namespace ostrakan {

class Stream : public Object {
 public:
  int Type = 1;
  int Mode = 3;
  std::u16string Charset = u"unicode";

  void Open();
  void Close();
  void LoadFromFile(std::u16string_view path);  // error 3002 "File could not be opened."
  void SaveToFile(std::u16string_view path, int options = 1);
  Bytes Read(long count = -1);     // from Position; -1 reads to the end
  void Write(const Bytes& bytes);  // at Position, overwriting and extending; moves Position
  std::u16string ReadText(long count = -1);  // decodes from Position with Charset
  void WriteText(std::u16string_view text);
  // Copies count bytes (-1: to the end) from this stream's Position to dest's Position.
  void CopyTo(Stream& dest, long count = -1);
  long Position() const { return position_; }
  void SetPosition(long p);  // beyond Size raises error 3219
  long Size() const { return static_cast<long>(data_.size()); }
  void SetEOS() { data_.resize(position_); }
  bool EOS() const { return position_ >= Size(); }
  bool IsOpen() const { return open_; }
  const Bytes& data() const { return data_; }

 private:
  void RequireOpen() const;
  bool open_ = false;
  long position_ = 0;
  Bytes data_;
};

}  // namespace ostrakan
