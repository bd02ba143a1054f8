// Runs a parsed page file against the request context of the current request: creates the
// page component, then walks the nodes in order, writing text and values with Response.Write,
// setting properties and calling methods. A method named InitFunction1 that takes the site
// settings (13 or more arguments) receives them in order, then the page's rule fields.
#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "engine/page_file.h"
#include "engine/site_setup.h"
#include "frame/component.h"
#include "frame/request_context.h"

namespace ostrakan::engine {

// Makes the page component for a ProgID (nullptr when unknown). Construction attaches the
// thread's request context.
using ComponentCreator = std::function<std::shared_ptr<Component>(std::u16string_view progId)>;
ComponentCreator DefaultComponentCreator();

// A failure that escaped the page: the line of the page file and what went wrong.
struct PageRunError : std::runtime_error {
  PageRunError(int line, const std::string& message);
  int line;
};

struct PageRun {
  const PageFile& page;
  const SiteSetup& setup;
  const std::vector<Variant>& ruleFields;  // handed to InitFunction1 after the settings
  const RequestContext& context;           // already published for this thread
  const ComponentCreator& create;
};

// Returns normally when the page ran to its end or ended the response; throws PageRunError
// for anything else. The component is released before this returns.
void RunPage(const PageRun& run);

}  // namespace ostrakan::engine
