#include "gathering/id_page_source.h"

#include <mutex>

#include "core/script_error.h"

namespace ostrakan::gathering {

namespace {

class NoPages : public PageSource {
 public:
  std::u16string Fetch(std::u16string_view, std::u16string_view) override { return u""; }
};

class NoStore : public RecordStore {
 public:
  void Save(ado::Connection&, const IdRecord&) override {
    throw ScriptError(429, u"ActiveX component can't create object");
  }
};

struct Services {
  std::mutex lock;
  std::shared_ptr<PageSource> pages = std::make_shared<NoPages>();
  std::shared_ptr<RecordStore> store = std::make_shared<NoStore>();
};

Services& Installed() {
  static Services services;
  return services;
}

}  // namespace

void UseIdGatheringServices(std::shared_ptr<PageSource> pages, std::shared_ptr<RecordStore> store) {
  Services& s = Installed();
  std::lock_guard<std::mutex> hold(s.lock);
  s.pages = pages ? std::move(pages) : std::make_shared<NoPages>();
  s.store = store ? std::move(store) : std::make_shared<NoStore>();
}

std::shared_ptr<PageSource> IdPageSource() {
  Services& s = Installed();
  std::lock_guard<std::mutex> hold(s.lock);
  return s.pages;
}

std::shared_ptr<RecordStore> IdRecordStore() {
  Services& s = Installed();
  std::lock_guard<std::mutex> hold(s.lock);
  return s.store;
}

}  // namespace ostrakan::gathering
