#include "frame/component.h"

#include <optional>
#include <stdexcept>
#include <typeinfo>
#include <variant>

#include "frame/error_log.h"
#include "frame/escape.h"
#include "frame/request_context.h"
#include "platform/ado/database_error.h"

namespace ostrakan {

ScriptError NoSuchMember() {
  return {438, u"Object doesn't support this property or method"};
}

namespace {

const MemberTable kNoMembers;

}  // namespace

Component::Component(std::u16string context) : context_(std::move(context)), members_(&kNoMembers) {
  AttachRequestContext();
}

Component::~Component() {
  DetachRequestContext();
}

bool Component::HasProperty(std::u16string_view name) const {
  const Member* m = members_->Find(name);
  return m && m->property;
}

Variant Component::GetProperty(std::u16string_view name) const {
  const Member* m = members_->Find(name);
  if (!m || !m->property) throw NoSuchMember();
  return m->property(const_cast<Component&>(*this));
}

void Component::SetProperty(std::u16string_view name, Variant value) {
  const Member* m = members_->Find(name);
  if (!m || !m->property) throw NoSuchMember();
  m->property(*this) = std::move(value);
}

bool Component::HasMethod(std::u16string_view name) const {
  const Member* m = members_->Find(name);
  return m && m->method;
}

const Member& Component::MethodNamed(std::u16string_view name) const {
  const Member* m = members_->Find(name);
  if (!m || !m->method) throw NoSuchMember();
  return *m;
}

size_t Component::Arity(std::u16string_view name) const {
  return MethodNamed(name).arity;
}

Variant Component::Invoke(std::u16string_view name, Args& args) {
  return Invoke(MethodNamed(name), args);
}

Variant Component::filtration(Variant& input) {
  return GuardValue(u"filtration", [&] { return Filtration(members_->filterKind, input); });
}

namespace {

#ifdef OSTRAKAN_STRICT
constexpr bool kStrict = true;
#else
constexpr bool kStrict = false;
#endif

// A broken precondition of our own code, not a failure of the page's work.
bool IsProgrammingError(const std::exception& e) {
  return dynamic_cast<const std::logic_error*>(&e) || dynamic_cast<const std::bad_cast*>(&e) ||
         dynamic_cast<const std::bad_variant_access*>(&e) ||
         dynamic_cast<const std::bad_optional_access*>(&e) ||
         dynamic_cast<const std::bad_function_call*>(&e);
}

}  // namespace

Variant Component::GuardValue(std::u16string_view method, const std::function<Variant()>& body) {
  std::u16string description;
  std::optional<std::u16string> storageFailure;
  try {
    return body();
  } catch (const ScriptError& e) {
    if (e.number == kResponseEndedError) throw;
    description = e.description;
    storageFailure = ado::StorageFailureSentence(e);
  } catch (const std::exception& e) {
    if (kStrict && IsProgrammingError(e)) throw;
    description = FromUtf8(e.what());
  }
  LogError(method, description);
  // A store that the disk refused is the administrator's to fix, so an administration page
  // says why instead of ending empty (public pages keep the server's state to themselves).
  if (storageFailure && context_.starts_with(u"\\admin\\") && CurrentContext().response)
    CurrentContext().response->Write(HtmlText(*storageFailure));
  return {};
}

void Component::LogError(std::u16string_view method, std::u16string_view description) const {
  LogComponentError(context_ + u", " + std::u16string(method) + u": " +
                    std::u16string(description));
}

void Component::Guard(std::u16string_view method, const std::function<void()>& body) {
  GuardValue(method, [&] {
    body();
    return Variant();
  });
}

}  // namespace ostrakan
