#include "frame/session.h"

namespace ostrakan {

Variant ItemStore::Get(std::u16string_view name) const {
  MutexLock lock(mutex_);
  auto it = items_.find(AsciiLower(name));
  return it == items_.end() ? Variant() : it->second;
}

void ItemStore::Set(std::u16string_view name, Variant value) {
  MutexLock lock(mutex_);
  items_[AsciiLower(name)] = std::move(value);
}

void ItemStore::Remove(std::u16string_view name) {
  MutexLock lock(mutex_);
  items_.erase(AsciiLower(name));
}

Variant ItemStore::Take(std::u16string_view name) {
  MutexLock lock(mutex_);
  auto it = items_.find(AsciiLower(name));
  if (it == items_.end()) return Variant();
  Variant value = std::move(it->second);
  items_.erase(it);
  return value;
}

void ItemStore::Clear() {
  MutexLock lock(mutex_);
  items_.clear();
}

std::map<std::u16string, Variant> ItemStore::Items() const {
  MutexLock lock(mutex_);
  return items_;
}

bool ItemStore::empty() const {
  MutexLock lock(mutex_);
  return items_.empty();
}

int Session::CodePage() const {
  MutexLock lock(mutex_);
  return codePage_;
}

void Session::SetCodePage(int codePage) {
  MutexLock lock(mutex_);
  codePage_ = codePage;
}

int Session::Timeout() const {
  MutexLock lock(mutex_);
  return timeout_;
}

void Session::SetTimeout(int minutes) {
  MutexLock lock(mutex_);
  timeout_ = minutes;
}

void Session::Abandon() {
  MutexLock lock(mutex_);
  abandoned_ = true;
}

bool Session::abandoned() const {
  MutexLock lock(mutex_);
  return abandoned_;
}

void Application::Lock() {
  const auto self = std::this_thread::get_id();
  MutexLock lock(lockMutex_);
  while (depth_ > 0 && owner_ != self) released_.wait(lockMutex_);
  owner_ = self;
  ++depth_;
}

void Application::Unlock() {
  MutexLock lock(lockMutex_);
  if (depth_ == 0 || owner_ != std::this_thread::get_id()) return;
  if (--depth_ == 0) {
    owner_ = {};
    released_.notify_one();
  }
}

void Application::ReleaseHeldByThisThread() {
  MutexLock lock(lockMutex_);
  if (depth_ == 0 || owner_ != std::this_thread::get_id()) return;
  depth_ = 0;
  owner_ = {};
  released_.notify_one();
}

}  // namespace ostrakan
