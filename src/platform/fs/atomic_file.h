// Writing a whole file so that no reader ever sees half of it.
//
// The bytes go to a temporary file in the target's own folder (same file system), created
// with mode 0666 less the umask, are flushed, and the temporary file is renamed over the
// target in one step; the folder is then flushed too, so the new file survives a crash. A reader
// (the static-file handler, a browser) sees either the old file or the new one. On failure the
// target is left as it was and the temporary file is removed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace ostrakan::fs {

// How many files this process has put in place so far (WriteFileAtomic, BatchedWrites::Commit).
// A cache that looks at files at intervals trusts its last look only while this is unchanged,
// so what the process writes itself is seen at once.
uint64_t FilesPutInPlace();
void CountFilePutInPlace();

// Writes bytes to path atomically. Returns nullopt on success, or a sentence saying what failed
// (in English, for logs and the command line).
std::optional<std::string> WriteFileAtomic(const std::filesystem::path& path,
                                           std::string_view bytes);

// The first half of WriteFileAtomic: writes the bytes to a new temporary file beside path
// (named in `temp`) and returns its descriptor, still open and not flushed, or -1 with the
// failure in `problem` (nothing left behind).
int WriteTemporary(const std::filesystem::path& path, std::string_view bytes, std::string& temp,
                   std::string& problem);

}  // namespace ostrakan::fs
