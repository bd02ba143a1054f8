// Session and Application: named items shared between requests, names case-insensitive.
// Both are safe to use from several request threads at once.
#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <string>

#include "core/variant.h"

namespace ostrakan {

class ItemStore : public Object {
 public:
  Variant Get(std::u16string_view name) const;  // Empty when never set
  void Set(std::u16string_view name, Variant value);
  void Remove(std::u16string_view name);
  void Clear();

 private:
  mutable std::mutex mutex_;
  std::map<std::u16string, Variant> items_;  // keyed by the lower-cased name
};

class Session : public ItemStore {
 public:
  int CodePage = 936;
  int Timeout = 20;  // minutes of idleness after which the engine drops the session
  void Abandon() { abandoned_ = true; }
  bool abandoned() const { return abandoned_; }

 private:
  bool abandoned_ = false;
};

class Application : public ItemStore {
 public:
  void Lock() { lock_.lock(); }
  void Unlock() { lock_.unlock(); }

 private:
  std::recursive_mutex lock_;
};

}  // namespace ostrakan
