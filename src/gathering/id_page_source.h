// What an ID-site test or run needs from the rest of the system: pages, fetched through the
// XML HTTP objects of the object factory, and the record store.
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

// Stores the entry in db through the shared record store (lookup and insert or refresh in one
// transaction): a new record when no record has its url, else the title, content and time of
// that record are refreshed (its url, source and clicks stay).
void SaveIdRecord(ado::Connection& conn, const IdRecord& record);

}  // namespace ostrakan::gathering
