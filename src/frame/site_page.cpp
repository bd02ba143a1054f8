#include "frame/site_page.h"

namespace ostrakan {

void AssignSetting(const Variant& source, Variant& target) {
  // A Variant copy shares an object and copies any other value.
  target = source;
}

const std::u16string (&SitePage::SettingNames())[kSettingCount] {
  static const std::u16string names[kSettingCount] = {
      u"WebSite_Title", u"Web_Path",      u"DB",         u"Save_DB",    u"ODB", u"Source_Show",
      u"Keyword_Add",   u"Admin_Session", u"Query_Word", u"Query_Name", u"I",   u"Form_Word",
      u"Form_Name"};
  return names;
}

std::array<Variant*, kSettingCount> SitePage::Settings() {
  return {&WebSite_Title, &Web_Path,      &DB,         &Save_DB,    &ODB, &Source_Show,
          &Keyword_Add,   &Admin_Session, &Query_Word, &Query_Name, &I,   &Form_Word,
          &Form_Name};
}

SitePage::SitePage(std::u16string context) : Component(std::move(context)) {
  auto members = Settings();
  for (size_t i = 0; i < kSettingCount; ++i) Property(SettingNames()[i], *members[i]);
  Method(
      u"InitFunction1",
      [this](Args& args) {
        InitFunction1(args);
        return Variant();
      },
      kSettingCount);
}

void SitePage::InitFunction1(Args& parameters) {
  Guard(u"InitFunction1", [&] {
    auto members = Settings();
    for (size_t i = 0; i < kSettingCount && i < parameters.size(); ++i)
      AssignSetting(parameters[i], *members[i]);
    if (parameters.size() > kSettingCount) AssignExtra(parameters, kSettingCount);
    FirstBlock();
  });
}

}  // namespace ostrakan
