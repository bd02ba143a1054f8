// An error that SQLite reported, keeping its result code and the system's errno behind it, so
// that a store which failed for want of disk space or of permission can be told apart from a
// statement that is wrong.
#pragma once

#include <exception>
#include <optional>
#include <string>

#include "core/script_error.h"

namespace ostrakan::ado {

// The number that the host's data access layer raises for a provider error (0x80004005).
constexpr int32_t kProviderError = -2147467259;

struct DatabaseError : ScriptError {
  DatabaseError(int32_t number, std::u16string description, int code, int systemErrno)
      : ScriptError(number, std::move(description)), code(code), systemErrno(systemErrno) {}
  int code;         // SQLite's extended result code (PostgreSQL's errors carry 0)
  int systemErrno;  // errno of the failed system call, 0 when none
};

// One sentence for the page when `error` is a database store that failed because the disk is
// full or because the database, its folder or its journal may not be written; nullopt for
// any other error.
std::optional<std::u16string> StorageFailureSentence(const std::exception& error);

}  // namespace ostrakan::ado
