// The MD5 members that the pages handling passwords carry: the public method `MD5` and the
// two bit-table properties `m_lOnBits` and `m_l2Power`.
#pragma once

#include "access/md5.h"
#include "core/variant_array.h"
#include "frame/component.h"

namespace ostrakan::admin {

template <class Base>
class WithMd5 : public Base {
 public:
  Variant m_lOnBits, m_l2Power;

  // 32 lower-case hexadecimal characters; Empty after a logged error.
  Variant MD5(const Variant& message) {
    return this->GuardValue(u"MD5", [&] { return Variant(ostrakan::Md5(CStr(message))); });
  }

 protected:
  explicit WithMd5(std::u16string context) : Base(std::move(context)) {
    m_lOnBits = Table(OnBitsTable());
    m_l2Power = Table(TwoPowerTable());
    this->template Describe<WithMd5>([](typename Base::template Describer<WithMd5>& m) {
      m.Property(u"m_lOnBits", &WithMd5::m_lOnBits);
      m.Property(u"m_l2Power", &WithMd5::m_l2Power);
      m.Method(
          u"MD5", [](WithMd5& page, Component::Args& a) { return page.MD5(a.at(0)); }, 1);
    });
  }

 private:
  static Variant Table(const std::vector<int32_t>& values) {
    auto array = std::make_shared<VariantArray>();
    for (int32_t v : values) array->items.emplace_back(v);
    return Variant(array);
  }
};

}  // namespace ostrakan::admin
