// A page component that receives the 13 site settings.
//
// InitFunction1(Parameter1 .. Parameter13 [, rule fields ...]) takes each setting over from its
// argument into its property (the arguments are the caller's copies of the settings: an object
// stays shared with the site's, any other value is the page's own), hands any further
// arguments to AssignExtra (the gathering pages' rule fields), then runs FirstBlock, all under
// the error convention with the method name "InitFunction1".
#pragma once

#include <array>

#include "frame/component.h"

namespace ostrakan {

constexpr size_t kSettingCount = 13;

// The target takes a new reference to an object, a copy of anything else.
void AssignSetting(const Variant& source, Variant& target);

class SitePage : public Component {
 public:
  explicit SitePage(std::u16string context);

  Variant WebSite_Title, Web_Path, DB, Save_DB, ODB, Source_Show, Keyword_Add, Admin_Session,
      Query_Word, Query_Name, I, Form_Word, Form_Name;

  void InitFunction1(Args& parameters);

  // The setting names, in the order InitFunction1 receives them.
  static const std::u16string (&SettingNames())[kSettingCount];

 private:
  std::array<Variant*, kSettingCount> Settings();

 protected:
  virtual void FirstBlock() {}
  virtual void AssignExtra(Args& parameters, size_t from) { (void)parameters, (void)from; }
};

}  // namespace ostrakan
