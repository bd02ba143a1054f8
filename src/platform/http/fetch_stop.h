// A stop signal for the fetches of one thread: a server that stops sets it, and a page of
// that server blocked on a remote fetch gives up within a second rather than waiting for the
// remote site (up to the fetch's two-minute limit). Each thread watches at most one signal.
#pragma once

#include <atomic>

namespace ostrakan::http {

// From now on, fetches on this thread abort once `*stop` is true (nullptr: never).
void WatchStopSignal(const std::atomic<bool>* stop);

// Whether the signal this thread watches is set.
bool StopSignalled();

}  // namespace ostrakan::http
