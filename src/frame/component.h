// The page component base.
//
// A component attaches the thread's request context when constructed and detaches it when
// destroyed. It owns a table of named properties (case-insensitive names, each bound to a
// Variant member of the component) and a table of named methods, through which the page
// engine sets properties and calls blocks by name.
//
// The error convention is implemented once, in Guard: ResponseEnded (and any ScriptError with
// its number) passes on; any other error becomes one line in the error log,
// "<context>, <method>: <description>", and the method returns normally. Built with
// OSTRAKAN_STRICT (the test build), programming errors (std::logic_error and its kin, bad casts
// and accesses) are not logged but rethrown, so that a test fails loudly.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/variant.h"
#include "frame/filtration.h"
#include "frame/request_context.h"

namespace ostrakan {

class Component : public Object {
 public:
  using Args = std::vector<Variant>;
  using MethodFn = std::function<Variant(Args&)>;

  // context: "\admin\<page>" (for the include pages "\admin\inc\<page>").
  explicit Component(std::u16string context);
  ~Component() override;
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

  // Property access by name; an unknown name raises error 438.
  bool HasProperty(std::u16string_view name) const;
  Variant GetProperty(std::u16string_view name) const;
  void SetProperty(std::u16string_view name, Variant value);

  // Method calls by name; an unknown name raises error 438. `Arity` is the number of
  // arguments the method takes (InitFunction1 of a page with settings takes 13 or more).
  bool HasMethod(std::u16string_view name) const;
  size_t Arity(std::u16string_view name) const;
  Variant Invoke(std::u16string_view name, Args& args);

  const std::u16string& context() const { return context_; }
  // Appends "<context>, <method>: <description>" to the error log.
  void LogError(std::u16string_view method, std::u16string_view description) const;

 protected:
  void Property(std::u16string name, Variant& member);
  void Method(std::u16string name, MethodFn fn, size_t arity = 0);
  // Registers the block `name` (no argument, nothing returned): the page engine's call runs
  // `body` under the error convention, logged with the block's name.
  void Block(std::u16string name, std::function<void()> body);
  // A block the page file calls that has nothing to do in the component.
  void EmptyBlock(std::u16string name) {
    Block(std::move(name), [] {});
  }
  // The same for a method of the page: Block(u"InitFunction5", &KeywordList::ListKeywords).
  template <class Page>
  void Block(std::u16string name, void (Page::*body)()) {
    Block(std::move(name), [page = static_cast<Page*>(this), body] { (page->*body)(); });
  }

  // Gives the component its public method `filtration` with the page's variant of the filter.
  void UseFiltration(FilterKind kind);
  // The page's filter under the error convention (the argument is rewritten in place).
  Variant filtration(Variant& input);

  // Runs body under the error convention. GuardValue returns the body's result, or Empty
  // after a logged error.
  void Guard(std::u16string_view method, const std::function<void()>& body);
  Variant GuardValue(std::u16string_view method, const std::function<Variant()>& body);

 private:
  struct NamedProperty {
    std::u16string name;
    Variant* member;
  };
  struct NamedMethod {
    std::u16string name;
    MethodFn fn;
    size_t arity;
  };
  const NamedProperty* FindProperty(std::u16string_view name) const;
  const NamedMethod* FindMethod(std::u16string_view name) const;

  std::u16string context_;
  FilterKind filterKind_ = FilterKind::Strict;
  std::vector<NamedProperty> properties_;
  std::vector<NamedMethod> methods_;
};

// Error 438 "Object doesn't support this property or method".
ScriptError NoSuchMember();

}  // namespace ostrakan
