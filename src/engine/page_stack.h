// Full-size stacks for running pages on the server's own threads.
//
// civetweb's threads have small stacks (100 KB in Debian's build), too small for page
// components that parse HTML with regular expressions, convert code pages and query SQLite.
// Handing each page to another thread cost two thread switches per request, most of the
// engine's time on short pages. Instead the connection's thread switches to a stack of its
// own (8 MiB of address space, reserved once per thread, memory taken only as it is used)
// and runs the page there: a switch in user space, the same thread, so thread-local state
// (the request context) works as it would on the thread's own stack.
//
// At most `maxPages` pages run at once; more wait for one to end.
#pragma once

#include <functional>
#include <semaphore>

namespace ostrakan::engine {

class PageStacks {
 public:
  PageStacks(int maxPages, size_t stackBytes);
  PageStacks(const PageStacks&) = delete;
  PageStacks& operator=(const PageStacks&) = delete;

  // Runs `work` on this thread's large stack and returns when it is done. `work` must not
  // throw. Not reentrant: `work` must not call Run.
  void Run(const std::function<void()>& work);

 private:
  size_t stackBytes_;
  std::counting_semaphore<> slots_;
};

}  // namespace ostrakan::engine
