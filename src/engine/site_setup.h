// The site's settings, read from Setup.asp at the site root: assignment lines in the ANSI code
// page naming the 13 settings that every page component receives (and any others a page file
// reads with Setting("Name")).
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/variant.h"
#include "engine/assignment_file.h"

namespace ostrakan::engine {

inline constexpr char16_t kSetupFileName[] = u"Setup.asp";

// Setup.asp is missing, unreadable or malformed; what() says which and where.
struct SiteSetupError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class SiteSetup {
 public:
  SiteSetup() = default;
  explicit SiteSetup(std::vector<Assignment> values);
  // Reads Setup.asp from bytes in the ANSI code page; throws SiteSetupError.
  static SiteSetup FromBytes(std::string_view bytes);

  // The value of a setting (the last assignment wins), Empty when Setup.asp does not set it.
  Variant Get(std::u16string_view name) const;
  // The 13 settings in the order InitFunction1 receives them (looked up once, not per page).
  const std::vector<Variant>& Settings() const { return settings_; }
  // The names of the 13 settings that Setup.asp does not set.
  std::vector<std::u16string> MissingSettings() const;
  // The name of the Session item that marks a signed-in administrator.
  std::u16string AdminSessionName() const;
  // The database file named by DB, under the site root.
  std::filesystem::path DatabasePath(const std::filesystem::path& siteRoot) const;

 private:
  std::vector<Assignment> values_;
  std::vector<Variant> settings_;
};

SiteSetup LoadSiteSetup(const std::filesystem::path& siteRoot);

}  // namespace ostrakan::engine
