// Clang's thread-safety attributes, and a mutex that carries them. With clang and
// -Wthread-safety the compiler checks that every member marked GUARDED_BY(m) is touched only
// while m is held; with other compilers the macros expand to nothing.
#pragma once

#include <mutex>

#if defined(__clang__)
#define OSTRAKAN_TS(x) __attribute__((x))
#else
#define OSTRAKAN_TS(x)
#endif

#define CAPABILITY(x) OSTRAKAN_TS(capability(x))
#define SCOPED_CAPABILITY OSTRAKAN_TS(scoped_lockable)
#define GUARDED_BY(x) OSTRAKAN_TS(guarded_by(x))
#define REQUIRES(...) OSTRAKAN_TS(requires_capability(__VA_ARGS__))
#define ACQUIRE(...) OSTRAKAN_TS(acquire_capability(__VA_ARGS__))
#define RELEASE(...) OSTRAKAN_TS(release_capability(__VA_ARGS__))
#define EXCLUDES(...) OSTRAKAN_TS(locks_excluded(__VA_ARGS__))

namespace ostrakan {

// std::mutex with the capability attribute, so that the analysis knows it.
class CAPABILITY("mutex") Mutex {
 public:
  void lock() ACQUIRE() { m_.lock(); }
  void unlock() RELEASE() { m_.unlock(); }

 private:
  std::mutex m_;
};

// Holds a Mutex for its scope.
class SCOPED_CAPABILITY MutexLock {
 public:
  explicit MutexLock(Mutex& m) ACQUIRE(m) : m_(m) { m_.lock(); }
  ~MutexLock() RELEASE() { m_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& m_;
};

}  // namespace ostrakan
