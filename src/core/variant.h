// Variant: the one value type that crosses every component boundary, with the scripting
// runtime's semantics (conversions, IsNumeric, comparison, the general date form).
//
// Invariants:
// - A Variant holds exactly one of the kinds of VarType; Object holds a shared reference (an
//   empty reference is Nothing) and copies of the Variant share the object.
// - Text is UTF-16, counted and cut in UTF-16 code units.
// - Dates are OLE automation dates: days since 1899-12-30, the fraction being the time of day.
// - Conversions that fail throw ScriptError with the runtime's number and text.
#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/script_error.h"

namespace ostrakan {

// Base of every host object (connections, record sets, streams, request objects ...).
class Object {
 public:
  virtual ~Object() = default;
};
using ObjectRef = std::shared_ptr<Object>;
using Bytes = std::vector<uint8_t>;

enum class VarType { Empty, Null, Boolean, Integer, Long, Double, Date, String, Object, Bytes };

class Variant {
 public:
  Variant() = default;
  // Only a real bool makes a Boolean: a pointer or a narrow literal must not turn into True.
  template <class B>
  requires std::same_as<B, bool>
  explicit Variant(B v) : value_(v) {}
  Variant(int32_t v) : value_(v) {}
  Variant(double v) : value_(v) {}
  Variant(const char16_t* v) : value_(std::u16string(v)) {}
  // Text is UTF-16: a narrow literal ("x" instead of u"x") is a mistake, not a Boolean.
  Variant(const char* v) = delete;
  Variant(std::u16string v) : value_(std::move(v)) {}
  Variant(std::u16string_view v) : value_(std::u16string(v)) {}
  Variant(ObjectRef v) : value_(ObjectSlot{std::move(v)}) {}
  Variant(Bytes v) : value_(std::move(v)) {}
  template <class T>
  Variant(std::shared_ptr<T> v) : value_(ObjectSlot{ObjectRef(std::move(v))}) {}

  static Variant Null();
  static Variant Integer(int16_t v);
  static Variant Date(double oleDate);
  static Variant Nothing() { return Variant(ObjectRef()); }

  VarType type() const;
  bool IsEmpty() const { return type() == VarType::Empty; }
  bool IsNull() const { return type() == VarType::Null; }
  bool IsObject() const { return type() == VarType::Object; }
  bool IsString() const { return type() == VarType::String; }
  bool IsNumber() const;  // Boolean, Integer, Long, Double or Date

  // Direct access; each throws type mismatch when the kind differs.
  const std::u16string& str() const;
  const ObjectRef& object() const;
  const Bytes& bytes() const;

  // The object as T, or nullptr when the Variant holds another kind or another class.
  template <class T>
  std::shared_ptr<T> As() const {
    if (auto p = std::get_if<ObjectSlot>(&value_)) return std::dynamic_pointer_cast<T>(p->ref);
    return nullptr;
  }

 private:
  struct NullTag {};
  struct IntegerSlot {
    int16_t v;
  };
  struct DateSlot {
    double v;
  };
  struct ObjectSlot {
    ObjectRef ref;
  };
  std::variant<std::monostate, NullTag, bool, IntegerSlot, int32_t, double, DateSlot,
               std::u16string, ObjectSlot, Bytes>
      value_;
  friend struct VariantAccess;
};

// Conversions as the scripting runtime performs them.
std::u16string CStr(const Variant& v);    // Null -> error 94; Empty -> ""; dates in general form
int32_t CLng(const Variant& v);           // banker's rounding; error 6 on overflow
int16_t CInt(const Variant& v);           // banker's rounding; error 6 on overflow
double CDbl(const Variant& v);            // error 13 for text that is not numeric
bool CBool(const Variant& v);             // numbers: nonzero; text "True"/"False" or numeric
double CDate(const Variant& v);           // OLE date; text in general or ISO form
bool IsNumeric(const Variant& v);         // what CDbl accepts (Empty counts, Null does not)
std::u16string TextOf(const Variant& v);  // CStr, but Null gives "" (for writing values out)

// Comparison of the runtime's '=' and '<': numbers numerically, texts by code unit, a number
// below any text, Empty as 0 or "". Returns <0, 0, >0. Null compares as the empty text
// (the runtime yields Null, which a page would read as "not different": a stored Null password
// must never match a typed one).
int Compare(const Variant& a, const Variant& b);
inline bool Equals(const Variant& a, const Variant& b) {
  return Compare(a, b) == 0;
}

// Dates. The time now is read through platform/clock.h, never here.
double MakeDate(int y, int mo, int d, int h = 0, int mi = 0, int s = 0);
std::u16string GeneralDate(double oleDate);  // "yyyy-M-d H:mm:ss", date alone at 0:00
std::u16string IsoDate(double oleDate);      // "yyyy-mm-dd hh:mm:ss" (storage form)
// The OLE date of a text in the general, ISO or "yyyy/m/d" form; nullopt for anything else.
std::optional<double> ParseDate(std::u16string_view text);

// UTF-8 <-> UTF-16 (invalid UTF-8 becomes U+FFFD).
std::u16string FromUtf8(std::string_view s);
std::string ToUtf8(std::u16string_view s);
// ASCII-only lower-casing for names (property names, ProgIDs, keys).
std::u16string AsciiLower(std::u16string_view s);
bool IEquals(std::u16string_view a, std::u16string_view b);  // ASCII case-insensitive

}  // namespace ostrakan
