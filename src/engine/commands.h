// The `ostrakan` command's two jobs: making a new site (init) and serving one (serve).
#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>

namespace ostrakan::engine {

struct InitOptions {
  std::filesystem::path dir;   // must not exist, or be empty
  std::filesystem::path from;  // the site to copy (the repository's site/)
  std::string admin = "admin";
  std::optional<std::string> password;  // generated when absent
  // A PostgreSQL connection URI: the site's database is there (an empty database, made from
  // data/schema.pg.sql) instead of an SQLite file, and the file that DB names holds the URI.
  std::optional<std::string> database = std::nullopt;
};

// Copies the site, creates the database named by DB from data/schema.sql and adds the first
// administrator. Prints the password when it was generated. Returns the exit status.
int RunInit(const InitOptions& options, std::ostream& out, std::ostream& err);

// "" when the folder can be served; otherwise what is wrong with it, in words: a missing
// folder or Setup.asp, a Setup.asp that cannot be read or lacks settings, a database file
// that is missing or is not the site's database, a database, folder or journal file that the
// serving user cannot write.
std::string CheckSite(const std::filesystem::path& dir);

struct ServeOptions {
  std::filesystem::path site;
  std::string listen = "127.0.0.1:8080";
  int threads = 64;
  bool behindProxy = false;  // trust X-Real-IP from loopback (nginx in front)
};

// Checks the site, listens, and serves until SIGINT or SIGTERM. Returns the exit status.
int RunServe(const ServeOptions& options, std::ostream& out, std::ostream& err);

struct PasswdOptions {
  std::filesystem::path site;
  std::string admin;
  std::optional<std::string> password;  // generated (and printed once) when absent
  bool json = false;                    // end with a one-line JSON summary
  bool add = false;                     // add `admin` when the site has no account of that name
};

// Sets the password of the administrator `admin` of a site. A name that no account has is
// refused, naming the accounts there are, unless `add` is set: then the account is added (so a
// site whose accounts were all renamed away can be entered again).
// The same rules and MD5 digest as init. Returns the exit status.
int RunPasswd(const PasswdOptions& options, std::ostream& out, std::ostream& err);

// "" when `value` can be typed at sign-in; otherwise why not (the sign-in page's filter would
// change it, or it is empty). `what` names the value in the sentence.
std::string SignInTextProblem(const std::string& what, const std::string& value);

// A password of `length` letters and digits that survive the sign-in filter.
std::string GeneratePassword(size_t length = 12);

}  // namespace ostrakan::engine
