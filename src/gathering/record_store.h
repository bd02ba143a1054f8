// The record store: one gathered entry into the video table `db`, inserted when its link is
// new and refreshed when it is known. Used by the list and the ID runs, on the web and headless.
//
// Stored forms: title cut to 100 characters, description to 150, link without any "http://"
// and cut to 150, image Null when empty, source the site's name, source_url the site's address
// without "http://" and through the gathered-text filter, click 0, time now. A refresh sets
// only title, description and time: link, image, source and click count stay.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/connection.h"

namespace ostrakan::gathering {

struct GatheredRecord {
  std::u16string title, content, url, image;
};

struct SourceSite {
  std::u16string name;     // the rule's `web`
  std::u16string address;  // the rule's `url`
};

enum class StoreOutcome { Inserted, Updated };

// The link as it is stored and looked up: every "http://" removed, cut to 150 characters.
std::u16string StoredLink(std::u16string_view link);

// Add: inserts the record. Edit: refreshes the record with this id (nothing when it is gone).
void AddRecord(ado::Connection& conn, const GatheredRecord& record, const SourceSite& site);
void EditRecord(ado::Connection& conn, long long id, std::u16string_view title,
                std::u16string_view content);

// The store of one run: its statements prepared once. Destroy it before closing `conn`.
class RecordStore {
 public:
  RecordStore(ado::Connection& conn, SourceSite site);
  ~RecordStore();
  // As StoreRecord.
  StoreOutcome Store(const GatheredRecord& record);
  // The records stored in order, each as Store stores it, in one call to the server, with the
  // outcome of each; nullopt (and nothing stored) where the database takes one at a time
  // (SQLite, or PostgreSQL whose schema predates the call). All or none are stored: an error
  // is raised, and on PostgreSQL it undoes the transaction that the call ran in.
  std::optional<std::vector<StoreOutcome>> StoreAtOnce(const std::vector<GatheredRecord>& records);
  // Whether its connection is inside a write transaction.
  bool InTransaction() const { return conn_.backend().InTransaction(); }

 private:
  struct Statements;
  ado::Connection& conn_;
  SourceSite site_;
  std::unique_ptr<Statements> statements_;
};

// Looks the stored link up and adds or edits, in one write transaction (BEGIN IMMEDIATE), so
// two runs that meet the same link at once store it once.
StoreOutcome StoreRecord(ado::Connection& conn, const GatheredRecord& record,
                         const SourceSite& site);

}  // namespace ostrakan::gathering
