// The FTS5 tokenizer "ostrakan" of the record index (db_index), over character_pairs.h.
//
// Every SQLite connection of the process gets it as it opens (an automatic extension that is
// installed before main runs), so any connection can search the index and take waiting
// records into it: pages, commands, tests. The same code is built as a loadable extension
// (libostrakan_tokenizer.so) for searching the index from the sqlite3 shell.
#pragma once

struct sqlite3;

namespace ostrakan::search {

constexpr const char* kTokenizerName = "ostrakan";

// Registers the tokenizer on one connection; an SQLite result code.
int RegisterTokenizer(sqlite3* db);

}  // namespace ostrakan::search
