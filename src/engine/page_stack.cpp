#include "engine/page_stack.h"

#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__)
#define OSTRAKAN_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define OSTRAKAN_ASAN 1
#endif
#endif
#ifdef OSTRAKAN_ASAN
#include <sanitizer/common_interface_defs.h>
#endif

namespace ostrakan::engine {
namespace {

// The large stack of one thread and what a switch to it needs.
struct ThreadStack {
  void* base = nullptr;  // lowest address; its first page is a guard page
  size_t size = 0;
  ucontext_t caller{}, page{};
  const std::function<void()>* work = nullptr;
  // The address sanitizer's view of the thread's own stack, for switching back.
  const void* callerBottom = nullptr;
  size_t callerSize = 0;

  ~ThreadStack() {
    if (base) ::munmap(base, size);
  }
};

thread_local ThreadStack current;

void Reserve(ThreadStack& s, size_t bytes) {
  if (s.base) return;
  const size_t pageSize = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
  bytes = (bytes + pageSize - 1) / pageSize * pageSize;
  void* p = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                   MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
  if (p == MAP_FAILED) {
    std::perror("ostrakan: cannot reserve a page stack");
    std::abort();
  }
  ::mprotect(p, pageSize, PROT_NONE);  // overflowing the stack faults instead of writing on
  s.base = p;
  s.size = bytes;
}

void PageMain() {
  ThreadStack& s = current;
#ifdef OSTRAKAN_ASAN
  __sanitizer_finish_switch_fiber(nullptr, &s.callerBottom, &s.callerSize);
#endif
  (*s.work)();
#ifdef OSTRAKAN_ASAN
  // Leaving for good: uc_link resumes the caller.
  __sanitizer_start_switch_fiber(nullptr, s.callerBottom, s.callerSize);
#endif
}

}  // namespace

PageStacks::PageStacks(int maxPages, size_t stackBytes)
    : stackBytes_(stackBytes), slots_(maxPages > 0 ? maxPages : 1) {}

void PageStacks::Run(const std::function<void()>& work) {
  slots_.acquire();
  ThreadStack& s = current;
  Reserve(s, stackBytes_);
  s.work = &work;
  ::getcontext(&s.page);
  s.page.uc_stack.ss_sp = s.base;
  s.page.uc_stack.ss_size = s.size;
  s.page.uc_link = &s.caller;
  ::makecontext(&s.page, &PageMain, 0);
#ifdef OSTRAKAN_ASAN
  void* fakeStack = nullptr;
  __sanitizer_start_switch_fiber(&fakeStack, s.base, s.size);
#endif
  ::swapcontext(&s.caller, &s.page);
#ifdef OSTRAKAN_ASAN
  __sanitizer_finish_switch_fiber(fakeStack, nullptr, nullptr);
#endif
  s.work = nullptr;
  slots_.release();
}

}  // namespace ostrakan::engine
