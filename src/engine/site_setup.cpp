#include "engine/site_setup.h"

#include "engine/file_cache.h"
#include "frame/site_page.h"
#include "platform/text/codepage.h"

namespace ostrakan::engine {

SiteSetup SiteSetup::FromBytes(std::string_view bytes) {
  try {
    return SiteSetup(ParseAssignments(text::Decode(bytes, text::kAnsiCodePage)));
  } catch (const AssignmentSyntaxError& e) {
    throw SiteSetupError("Setup.asp, " + std::string(e.what()));
  }
}

Variant SiteSetup::Get(std::u16string_view name) const {
  for (auto it = values_.rbegin(); it != values_.rend(); ++it)
    if (IEquals(it->name, name)) return Variant(it->value);
  return {};
}

SiteSetup::SiteSetup(std::vector<Assignment> values) : values_(std::move(values)) {
  for (const std::u16string& name : SitePage::SettingNames()) settings_.push_back(Get(name));
}

std::vector<std::u16string> SiteSetup::MissingSettings() const {
  std::vector<std::u16string> out;
  for (const std::u16string& name : SitePage::SettingNames())
    if (Get(name).IsEmpty()) out.push_back(name);
  return out;
}

std::u16string SiteSetup::AdminSessionName() const {
  return TextOf(Get(u"Admin_Session"));
}

std::filesystem::path SiteSetup::DatabasePath(const std::filesystem::path& siteRoot) const {
  // The components map "../" + DB from the admin folder, so DB is relative to the site root.
  std::string relative = ToUtf8(TextOf(Get(u"DB")));
  for (char& c : relative)
    if (c == '\\') c = '/';
  while (!relative.empty() && relative.front() == '/') relative.erase(0, 1);
  return siteRoot / relative;
}

SiteSetup LoadSiteSetup(const std::filesystem::path& siteRoot) {
  std::filesystem::path file = siteRoot / kSetupFileName;
  std::optional<std::string> bytes = ReadWholeFile(file);
  if (!bytes) throw SiteSetupError("cannot read " + file.string());
  return SiteSetup::FromBytes(*bytes);
}

}  // namespace ostrakan::engine
