// What an ID-site test or run needs from the rest of the system: a page fetcher and a record
// store. The pages and commands use whatever was installed with UseIdGatheringServices (the
// program installs the real fetcher and store at start-up, tests their own).
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/ado/connection.h"

namespace ostrakan::gathering {

class PageSource {
 public:
  virtual ~PageSource() = default;
  // The page at `url` decoded with the rule's `charset`; "" when it cannot be fetched.
  virtual std::u16string Fetch(std::u16string_view url, std::u16string_view charset) = 0;
};

// One gathered entry of an ID site, ready to store.
struct IdRecord {
  std::u16string title, content;
  std::u16string url;         // the page address without "http://": the record's key
  std::u16string source;      // the rule's site name
  std::u16string source_url;  // the rule's site address without "http://"
};

class RecordStore {
 public:
  virtual ~RecordStore() = default;
  // Stores the entry in db: a new record when no record has its url, else the title, content
  // and time of that record are refreshed (its url, source and clicks stay).
  virtual void Save(ado::Connection& conn, const IdRecord& record) = 0;
};

void UseIdGatheringServices(std::shared_ptr<PageSource> pages, std::shared_ptr<RecordStore> store);

// The installed services. Without a page source every page comes back empty (as a page that
// cannot be fetched); without a record store, storing raises error 429.
std::shared_ptr<PageSource> IdPageSource();
std::shared_ptr<RecordStore> IdRecordStore();

}  // namespace ostrakan::gathering
