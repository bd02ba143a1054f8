// Session and Application: named items shared between requests, names case-insensitive.
// Both are safe to use from several request threads at once: every member is read and written
// under the object's own mutex.
#pragma once

#include <condition_variable>
#include <map>
#include <string>
#include <thread>

#include "core/variant.h"
#include "frame/thread_safety.h"

namespace ostrakan {

class ItemStore : public Object {
 public:
  Variant Get(std::u16string_view name) const EXCLUDES(mutex_);  // Empty when never set
  void Set(std::u16string_view name, Variant value) EXCLUDES(mutex_);
  void Remove(std::u16string_view name) EXCLUDES(mutex_);
  // Get and Remove in one step: of several threads taking the same item, one gets its value
  // and the others Empty (a one-time value, such as the sign-in verify code, is used once).
  Variant Take(std::u16string_view name) EXCLUDES(mutex_);
  void Clear() EXCLUDES(mutex_);
  bool empty() const EXCLUDES(mutex_);  // no item has been stored (or all were removed)
  // Every item, by lower-cased name (for a store that keeps sessions outside the process).
  std::map<std::u16string, Variant> Items() const EXCLUDES(mutex_);

 protected:
  mutable Mutex mutex_;

 private:
  std::map<std::u16string, Variant> items_ GUARDED_BY(mutex_);  // keyed by the lower-cased name
};

class Session : public ItemStore {
 public:
  int CodePage() const EXCLUDES(mutex_);
  void SetCodePage(int codePage) EXCLUDES(mutex_);
  // Minutes of idleness after which the engine drops the session.
  int Timeout() const EXCLUDES(mutex_);
  void SetTimeout(int minutes) EXCLUDES(mutex_);
  void Abandon() EXCLUDES(mutex_);
  bool abandoned() const EXCLUDES(mutex_);

 private:
  int codePage_ GUARDED_BY(mutex_) = 936;
  int timeout_ GUARDED_BY(mutex_) = 20;
  bool abandoned_ GUARDED_BY(mutex_) = false;
};

// Application.Lock/Unlock: one page at a time holds the lock (several times over, if it
// locks again). The engine calls ReleaseHeldByThisThread when a page ends, so a page that
// failed between Lock and Unlock cannot leave the site waiting for ever.
class Application : public ItemStore {
 public:
  void Lock() EXCLUDES(lockMutex_);
  void Unlock() EXCLUDES(lockMutex_);  // does nothing unless this thread holds the lock
  void ReleaseHeldByThisThread() EXCLUDES(lockMutex_);

 private:
  Mutex lockMutex_;
  std::condition_variable_any released_;
  std::thread::id owner_ GUARDED_BY(lockMutex_);  // default id: nobody holds it
  int depth_ GUARDED_BY(lockMutex_) = 0;
};

}  // namespace ostrakan
