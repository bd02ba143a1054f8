// What an ID-site test or run needs from the rest of the system: a page fetcher and a record
// store. By default they are the real ones: pages through the XML HTTP objects of the object
// factory, records through the shared record store. Tests install their own with
// UseIdGatheringServices.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/ado/connection.h"
#include "platform/object_factory.h"

namespace ostrakan::gathering {

class PageSource {
 public:
  virtual ~PageSource() = default;
  // The page at `url` decoded with the rule's `charset`; "" when it cannot be fetched.
  virtual std::u16string Fetch(std::u16string_view url, std::u16string_view charset) = 0;
  // Why the last Fetch gave no page (the fetcher's words); "" when it gave one.
  virtual std::string why() const { return {}; }
};

// One gathered entry of an ID site, ready to store.
struct IdRecord {
  std::u16string title, content;
  std::u16string url;         // the page address without "http://": the record's key
  std::u16string source;      // the rule's site name
  std::u16string source_url;  // the rule's site address without "http://"
};

class IdStore {
 public:
  virtual ~IdStore() = default;
  // Stores the entry in db: a new record when no record has its url, else the title, content
  // and time of that record are refreshed (its url, source and clicks stay).
  virtual void Save(ado::Connection& conn, const IdRecord& record) = 0;
};

// Pages fetched through the factory's XML HTTP objects and decoded with the rule's charset.
class FactoryPages : public PageSource {
 public:
  explicit FactoryPages(const ObjectFactory& factory) : factory_(factory) {}
  std::u16string Fetch(std::u16string_view url, std::u16string_view charset) override;
  std::string why() const override { return why_; }

 private:
  const ObjectFactory& factory_;
  std::string why_;
};

// Records through the shared record store (lookup and insert or refresh in one transaction).
class DatabaseIdStore : public IdStore {
 public:
  void Save(ado::Connection& conn, const IdRecord& record) override;
};

// Installs test doubles; nullptr puts the real service back.
void UseIdGatheringServices(std::shared_ptr<PageSource> pages, std::shared_ptr<IdStore> store);

// The installed page source, or the factory's pages when none is installed.
std::shared_ptr<PageSource> IdPageSource(const ObjectFactory& factory);
std::shared_ptr<IdStore> IdRecordStore();

}  // namespace ostrakan::gathering
