// Page files: the thin pages of the site. HTML text with a few script forms:
//
//   <%@ Component="Ostrakan.Class30" %>          the page component to create
//   <%@ Rule="gather_list_web_list.asp" %>       rule fields for InitFunction1 (see page_runner)
//   <% InitFunction1 %>                          call a method (also "Call Name" or "Name()")
//   <% id = Request("id") %>                     set a property
//   <%= WebSite_Title %>                         write a value
//
// A value is a property name, a "quoted literal" (quotes doubled inside), a whole number,
// Request("x"), Request.QueryString("x"), Request.Form("x"), Request.ServerVariables("x"),
// Session("x") or Setting("x") (a site setting from Setup.asp). A code block may hold several
// statements, one a line or separated by ':'; ' starts a comment. One line break right after
// the %> of a directive or a code block is dropped, so that code lines leave no blank lines
// (a page that sends an image writes nothing of its own).
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"

namespace ostrakan::engine {

struct PageValue {
  enum class Kind {
    Literal,
    Property,
    Setting,
    Request,
    QueryString,
    Form,
    ServerVariable,
    Session
  };
  Kind kind = Kind::Literal;
  std::u16string name;  // the property, setting or key
  Variant literal;      // for Literal: a String or a Long
};

struct PageNode {
  enum class Kind { Text, Call, Assign, Write };
  Kind kind = Kind::Text;
  int line = 0;
  std::u16string text;  // Text: the markup; Call: the method; Assign: the property
  PageValue value;      // Assign and Write
  std::string ansi;     // Text: the markup in the ANSI code page, as most pages write it
};

struct PageFile {
  std::u16string component;  // ProgID; empty for a plain page
  std::u16string rule;       // rule file name in the page's folder; empty when none
  std::vector<PageNode> nodes;
};

struct PageSyntaxError : std::runtime_error {
  PageSyntaxError(int line, const std::string& message);
  int line;
  std::string message;
};

// Parses a page file; the text nodes are also encoded in the ANSI code page (PageNode::ansi),
// once per version of the file rather than on every request.
PageFile ParsePageFile(std::u16string_view text);

}  // namespace ostrakan::engine
