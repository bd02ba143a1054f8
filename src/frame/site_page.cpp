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
  Describe<SitePage>([](Describer<SitePage>& m) {
    for (size_t i = 0; i < kSettingCount; ++i)
      m.Property(SettingNames()[i],
                 [i](SitePage& page) -> Variant& { return *page.Settings()[i]; });
    m.Method(
        u"InitFunction1",
        [](SitePage& page, Args& args) {
          page.InitFunction1(args);
          return Variant();
        },
        kSettingCount);
  });
}

void SitePage::InitFunction1(Args& parameters) {
  Guard(u"InitFunction1", [&] {
    auto members = Settings();
    for (size_t i = 0; i < kSettingCount && i < parameters.size(); ++i)
      *members[i] = std::move(parameters[i]);
    if (parameters.size() > kSettingCount) AssignExtra(parameters, kSettingCount);
    FirstBlock();
  });
}

}  // namespace ostrakan
