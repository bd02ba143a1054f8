// The PostgreSQL engine behind the ADO objects, on libpq.
//
// A site on PostgreSQL keeps, where its SQLite file would be, a one-line address file holding a
// libpq connection URI ("postgresql://user@host/name", never a password: libpq reads that from
// the serving user's ~/.pgpass). Sessions are kept in a small pool per address, so a page does
// not pay for a new server process; a session whose connection broke, or that a page left
// inside a transaction, is never reused, so the next request after a lost connection or a
// restart of PostgreSQL connects afresh.
//
// Queries stream in libpq's single-row mode: a list over a million rows holds one row at a
// time. A connection carries one running query, so when a page runs another statement while a
// set is still being read, the rest of that set's rows are read into memory first.
// Writers are serialized through a transaction-level advisory lock, as SQLite's BEGIN
// IMMEDIATE does, so a lookup followed by an insert cannot race an identical pair.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/backend.h"

namespace ostrakan::ado {

// The connection URI that `file` holds when it is an address file ("postgresql://..." or
// "postgres://..." on its first line); nullopt for anything else (an SQLite database, which
// it never opens: see the definition).
std::optional<std::string> ServerAddressIn(const std::filesystem::path& file);

// Whether `uri` names a PostgreSQL database.
bool IsServerAddress(std::string_view uri);

// The texts as one PostgreSQL array literal ({"a","b\"c",NULL}), to be bound as a single
// value where a statement takes a text[]: every element quoted with '"' and '\' escaped, a
// nullopt element NULL. Raises the NUL error for a text holding NUL, as a bound text does.
std::u16string ServerArrayLiteral(const std::vector<std::optional<std::u16string>>& texts);

// A session on the database at `uri` (from the pool when one is idle); raises the provider
// error, in one sentence, when the server cannot be reached.
std::shared_ptr<Backend> ConnectServer(const std::string& uri);

// Whether the connection URI carries a password (which must not be written into a site).
bool AddressHoldsPassword(const std::string& uri);

// Makes a new site's database at `uri`: the tables of `schema` and the first administrator
// (`admin`, with the password digest `digest`), in one transaction. Raises ScriptError, in
// one sentence, when the server cannot be reached, when the database holds tables already, or
// when the schema fails; then nothing was created.
void CreateServerSite(const std::string& uri, const std::string& schema, const std::string& admin,
                      const std::string& digest);

// Drops the idle sessions of the pool (tests that stop a server; a process about to exit).
void DropIdleServerSessions();

}  // namespace ostrakan::ado
