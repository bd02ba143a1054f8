#include "gathering/id_page_source.h"

#include <mutex>

#include "gathering/page_fetch.h"
#include "gathering/record_store.h"

namespace ostrakan::gathering {

std::u16string FactoryPages::Fetch(std::u16string_view url, std::u16string_view charset) {
  FetchedPage page = FetchPage(factory_, url, charset);
  why_ = std::move(page.why);
  return std::move(page.text).value_or(u"");
}

void DatabaseIdStore::Save(ado::Connection& conn, const IdRecord& record) {
  StoreRecord(conn, GatheredRecord{record.title, record.content, record.url, u""},
              SourceSite{record.source, record.source_url});
}

namespace {

struct Services {
  std::mutex lock;
  std::shared_ptr<PageSource> pages;  // null: the factory's pages
  std::shared_ptr<IdStore> store = std::make_shared<DatabaseIdStore>();
};

Services& Installed() {
  static Services services;
  return services;
}

}  // namespace

void UseIdGatheringServices(std::shared_ptr<PageSource> pages, std::shared_ptr<IdStore> store) {
  Services& s = Installed();
  std::lock_guard<std::mutex> hold(s.lock);
  s.pages = std::move(pages);
  s.store = store ? std::move(store) : std::make_shared<DatabaseIdStore>();
}

std::shared_ptr<PageSource> IdPageSource(const ObjectFactory& factory) {
  Services& s = Installed();
  std::lock_guard<std::mutex> hold(s.lock);
  if (s.pages) return s.pages;
  return std::make_shared<FactoryPages>(factory);
}

std::shared_ptr<IdStore> IdRecordStore() {
  Services& s = Installed();
  std::lock_guard<std::mutex> hold(s.lock);
  return s.store;
}

}  // namespace ostrakan::gathering
