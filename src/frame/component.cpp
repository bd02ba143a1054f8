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

Component::Component(std::u16string context) : context_(std::move(context)) {
  AttachRequestContext();
}

Component::~Component() {
  DetachRequestContext();
}

void Component::Property(std::u16string name, Variant& member) {
  properties_.push_back({std::move(name), &member});
}

void Component::Method(std::u16string name, MethodFn fn, size_t arity) {
  methods_.push_back({std::move(name), std::move(fn), arity});
}

void Component::Block(std::u16string name, std::function<void()> body) {
  Method(name, [this, name, body = std::move(body)](Args&) {
    Guard(name, body);
    return Variant();
  });
}

const Component::NamedProperty* Component::FindProperty(std::u16string_view name) const {
  for (const auto& p : properties_)
    if (IEquals(p.name, name)) return &p;
  return nullptr;
}

const Component::NamedMethod* Component::FindMethod(std::u16string_view name) const {
  for (const auto& m : methods_)
    if (IEquals(m.name, name)) return &m;
  return nullptr;
}

bool Component::HasProperty(std::u16string_view name) const {
  return FindProperty(name);
}

Variant Component::GetProperty(std::u16string_view name) const {
  if (auto p = FindProperty(name)) return *p->member;
  throw NoSuchMember();
}

void Component::SetProperty(std::u16string_view name, Variant value) {
  auto p = FindProperty(name);
  if (!p) throw NoSuchMember();
  *p->member = std::move(value);
}

bool Component::HasMethod(std::u16string_view name) const {
  return FindMethod(name);
}

size_t Component::Arity(std::u16string_view name) const {
  if (auto m = FindMethod(name)) return m->arity;
  throw NoSuchMember();
}

Variant Component::Invoke(std::u16string_view name, Args& args) {
  auto m = FindMethod(name);
  if (!m) throw NoSuchMember();
  return m->fn(args);
}

void Component::UseFiltration(FilterKind kind) {
  filterKind_ = kind;
  Method(
      u"filtration", [this](Args& args) { return filtration(args.at(0)); }, 1);
}

Variant Component::filtration(Variant& input) {
  return GuardValue(u"filtration", [&] { return Filtration(filterKind_, input); });
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
