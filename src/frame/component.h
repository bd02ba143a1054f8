// The page component base.
//
// A component attaches the thread's request context when constructed and detaches it when
// destroyed. Its class describes, once, the properties (case-insensitive names, each bound to
// a Variant member of the component), methods and blocks through which the page engine sets
// properties and calls blocks by name (Describe, frame/member_table.h).
//
// The error convention is implemented once, in Guard: ResponseEnded (and any ScriptError with
// its number) passes on; any other error becomes one line in the error log,
// "<context>, <method>: <description>", and the method returns normally. Built with
// OSTRAKAN_STRICT (the test build), programming errors (std::logic_error and its kin, bad casts
// and accesses) are not logged but rethrown, so that a test fails loudly.
#pragma once

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "core/variant.h"
#include "frame/filtration.h"
#include "frame/member_table.h"
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
  // The method `name` found once, for its arity and its call (error 438 when unknown).
  const Member& MethodNamed(std::u16string_view name) const;
  Variant Invoke(const Member& method, Args& args) { return method.method(*this, args); }

  const std::u16string& context() const { return context_; }
  // Appends "<context>, <method>: <description>" to the error log.
  void LogError(std::u16string_view method, std::u16string_view description) const;

 protected:
  // What a class adds to the members of its base, in Describe:
  //   Describe<Desktop>([](auto& m) {
  //     m.Block(u"InitFunction3", &Desktop::WriteSignedInName);
  //     m.Property(u"conn", &Desktop::conn);
  //   });
  template <class Page>
  class Describer {
   public:
    explicit Describer(MemberTable& table) : table_(table) {}
    // `member` is a Variant member of Page, or a function of Page& that returns one.
    template <class Get>
    void Property(std::u16string name, Get member) {
      table_.Add({std::move(name),
                  [member](Component& c) -> Variant& {
                    return std::invoke(member, static_cast<Page&>(c));
                  },
                  {},
                  0});
    }
    // `fn(Page&, Args&)`, or `fn(Args&)`, returns the method's value.
    template <class Fn>
    void Method(std::u16string name, Fn fn, size_t arity = 0) {
      table_.Add({std::move(name),
                  {},
                  [fn](Component& c, Args& args) -> Variant {
                    if constexpr (std::is_invocable_v<Fn, Args&>)
                      return fn(args);
                    else
                      return std::invoke(fn, static_cast<Page&>(c), args);
                  },
                  arity});
    }
    // A block (no argument, nothing returned): a method of Page or a function of Page& (or of
    // nothing), run under the error convention and logged with the block's name.
    template <class Body>
    void Block(std::u16string name, Body body) {
      Method(name, [name, body](Page& page, Args&) {
        page.Guard(name, [&] {
          if constexpr (std::is_invocable_v<Body>)
            body();
          else
            std::invoke(body, page);
        });
        return Variant();
      });
    }
    // A block the page file calls that has nothing to do in the component.
    void EmptyBlock(std::u16string name) {
      Block(std::move(name), [] {});
    }
    // The public method `filtration` with the page's variant of the filter.
    void Filtration(FilterKind kind) {
      table_.filterKind = kind;
      Method(
          u"filtration", [](Page& page, Args& args) { return page.filtration(args.at(0)); }, 1);
    }

   private:
    MemberTable& table_;
  };

  // Gives the component the members of its base class and those `describe` adds, built into a
  // table of the class Page on its first construction. Page's constructor calls it once; the
  // members a base described must be the same for every Page (a name that differs between
  // derived classes is described by each of them).
  template <class Page, class Fn>
  void Describe(Fn describe) {
    static const MemberTable table = [this, &describe] {
      MemberTable built = *members_;
      Describer<Page> d(built);
      describe(d);
      return built;
    }();
    members_ = &table;
  }

  // The page's filter under the error convention (the argument is rewritten in place).
  Variant filtration(Variant& input);

  // Runs body under the error convention. GuardValue returns the body's result, or Empty
  // after a logged error.
  void Guard(std::u16string_view method, const std::function<void()>& body);
  Variant GuardValue(std::u16string_view method, const std::function<Variant()>& body);

 private:
  std::u16string context_;
  const MemberTable* members_;
};

// Error 438 "Object doesn't support this property or method".
ScriptError NoSuchMember();

}  // namespace ostrakan
