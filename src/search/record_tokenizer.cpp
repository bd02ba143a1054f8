#include "search/record_tokenizer.h"

#ifdef OSTRAKAN_SQLITE_EXTENSION
#include <sqlite3ext.h>
SQLITE_EXTENSION_INIT1
#else
#include <sqlite3.h>
#endif

#include "platform/ado/database_file.h"
#include "search/character_pairs.h"

namespace ostrakan::search {

namespace {

// The tokenizer keeps no state: one object serves every table.
Fts5Tokenizer* const kInstance = reinterpret_cast<Fts5Tokenizer*>(const_cast<char*>(""));

int Create(void*, const char**, int, Fts5Tokenizer** out) {
  *out = kInstance;
  return SQLITE_OK;
}

void Delete(Fts5Tokenizer*) {}

using TokenCallback = int (*)(void*, int, const char*, int, int, int);

int Tokenize(Fts5Tokenizer*, void* context, int flags, const char* text, int size,
             TokenCallback token) {
  std::string_view view(text, size > 0 ? static_cast<std::size_t>(size) : 0);
  // SQLite's LIKE reads a text up to a NUL; so does the index.
  view = view.substr(0, view.find('\0'));
  auto emit = [&](std::string_view t, bool colocated, std::size_t start, std::size_t end) {
    return token(context, colocated ? FTS5_TOKEN_COLOCATED : 0, t.data(),
                 static_cast<int>(t.size()), static_cast<int>(start), static_cast<int>(end));
  };
  // Words of a MATCH expression give their pairs; stored texts (and highlighting) every token.
  if (flags & FTS5_TOKENIZE_QUERY) return ForEachWordToken(view, emit);
  return ForEachTextToken(view, emit);
}

fts5_api* Fts5Of(sqlite3* db) {
  fts5_api* api = nullptr;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db, "SELECT fts5(?1)", -1, &statement, nullptr) != SQLITE_OK)
    return nullptr;
  sqlite3_bind_pointer(statement, 1, &api, "fts5_api_ptr", nullptr);
  sqlite3_step(statement);
  sqlite3_finalize(statement);
  return api;
}

}  // namespace

int RegisterTokenizer(sqlite3* db) {
  fts5_api* api = Fts5Of(db);
  if (!api) return SQLITE_ERROR;
  fts5_tokenizer tokenizer{Create, Delete, Tokenize};
  return api->xCreateTokenizer(api, kTokenizerName, nullptr, &tokenizer, nullptr);
}

}  // namespace ostrakan::search

#ifdef OSTRAKAN_SQLITE_EXTENSION
// The entry point that the sqlite3 shell's ".load libostrakan_tokenizer" looks for.
extern "C" int sqlite3_ostrakantokenizer_init(sqlite3* db, char**,
                                              const sqlite3_api_routines* routines) {
  SQLITE_EXTENSION_INIT2(routines);
  return ostrakan::search::RegisterTokenizer(db);
}
#else
namespace {

int RegisterOnOpen(sqlite3* db, const char**, const void*) {
  return ostrakan::search::RegisterTokenizer(db);
}

}  // namespace

// Installed before main runs; the build asks the linker to keep this object (see
// CMakeLists.txt), since nothing calls into it by name.
extern "C" const int ostrakan_tokenizer_installed =
    (ostrakan::ado::ConfigureSqliteOnce(),
     sqlite3_auto_extension(reinterpret_cast<void (*)()>(RegisterOnOpen)));
#endif
