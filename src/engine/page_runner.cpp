#include "engine/page_runner.h"

#include "admin/registry.h"
#include "frame/escape.h"
#include "frame/site_page.h"
#include "platform/text/codepage.h"

namespace ostrakan::engine {
namespace {

Variant Evaluate(const PageValue& v, const PageRun& run, Component* component) {
  const Request& request = *run.context.request;
  switch (v.kind) {
    case PageValue::Kind::Literal:
      return v.literal;
    case PageValue::Kind::Property:
      return component->GetProperty(v.name);
    case PageValue::Kind::Setting:
      return run.setup.Get(v.name);
    case PageValue::Kind::Request:
      return request.Item(v.name);
    case PageValue::Kind::QueryString:
      return request.QueryString(v.name);
    case PageValue::Kind::Form:
      return request.Form(v.name);
    case PageValue::Kind::ServerVariable:
      return request.ServerVariables(v.name);
    case PageValue::Kind::Session:
      return run.context.session->Get(v.name);
  }
  return {};
}

void Call(Component& component, const std::u16string& method, const PageRun& run) {
  const Member& member = component.MethodNamed(method);  // one lookup for arity and call
  const size_t arity = member.arity;
  Component::Args args;
  if (arity >= kSettingCount && IEquals(method, u"InitFunction1")) {
    args = run.setup.Settings();
    args.insert(args.end(), run.ruleFields.begin(), run.ruleFields.end());
  }
  if (args.size() < arity) args.resize(arity);
  component.Invoke(member, args);
}

void RunNodes(const PageRun& run, Component* component, int& line) {
  Response& response = *run.context.response;
  for (const PageNode& node : run.page.nodes) {
    line = node.line;
    switch (node.kind) {
      case PageNode::Kind::Text:
        if (response.CodePage() == text::kAnsiCodePage)
          response.BinaryWrite(node.ansi);  // encoded when the file was read
        else
          response.Write(Markup::OfPageFile(node.text));
        break;
      case PageNode::Kind::Write:
        // A value can land in text or in a quoted attribute (value="<%= Keyword %>"): escaped
        // for an attribute, it is safe in both and reads the same.
        response.Write(HtmlAttr(TextOf(Evaluate(node.value, run, component))));
        break;
      case PageNode::Kind::Assign:
        component->SetProperty(node.text, Evaluate(node.value, run, component));
        break;
      case PageNode::Kind::Call:
        Call(*component, node.text, run);
        break;
    }
  }
}

}  // namespace

ComponentCreator DefaultComponentCreator() {
  return [](std::u16string_view progId) { return CreateComponent(progId); };
}

PageRunError::PageRunError(int l, const std::string& message)
    : std::runtime_error(message), line(l) {}

void RunPage(const PageRun& run) {
  int line = 1;
  try {
    std::shared_ptr<Component> component;
    if (!run.page.component.empty()) {
      component = run.create(run.page.component);
      if (!component)
        throw std::runtime_error("no page component is registered as " +
                                 ToUtf8(run.page.component));
    }
    RunNodes(run, component.get(), line);
  } catch (const ScriptError& e) {
    if (e.number == kResponseEndedError) return;
    throw PageRunError(line, "error " + std::to_string(e.number) + ": " + e.what());
  } catch (const std::exception& e) {
    throw PageRunError(line, e.what());
  }
}

}  // namespace ostrakan::engine
