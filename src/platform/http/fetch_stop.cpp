#include "platform/http/fetch_stop.h"

namespace ostrakan::http {
namespace {

thread_local const std::atomic<bool>* watched = nullptr;

}  // namespace

void WatchStopSignal(const std::atomic<bool>* stop) {
  watched = stop;
}

bool StopSignalled() {
  return watched && watched->load(std::memory_order_relaxed);
}

}  // namespace ostrakan::http
