// The stream object ("ADODB.Stream") in binary mode (Type 1): a byte buffer with a position,
// which the verify picture loads its digit pictures through. Any other Type refuses to read
// or write (error 3219).
#pragma once

#include <string>

#include "core/variant.h"

namespace ostrakan {

class Stream : public Object {
 public:
  int Type = 1;
  int Mode = 3;

  void Open();
  void Close();
  void LoadFromFile(std::u16string_view path);  // error 3002 "File could not be opened."
  Bytes Read(long count = -1);                  // from Position; -1 reads to the end
  void Write(const Bytes& bytes);  // at Position, overwriting and extending; moves Position
  long Position() const { return position_; }
  void SetPosition(long p);  // beyond Size raises error 3219
  long Size() const { return static_cast<long>(data_.size()); }
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
