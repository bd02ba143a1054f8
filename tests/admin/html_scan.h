// The markup that pages write, read by an HTML5 parser (gumbo) as a browser reads it: every
// element with its attributes (values decoded from entities), the raw text of script elements,
// and the decoded text of textarea elements; and a reader of script text that finds what runs
// outside its string literals. Enough to tell whether stored text came out as text or as markup.
#pragma once

#include <gumbo.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"

namespace ostrakan::testing {

struct HtmlTag {
  std::u16string name;                                                // lower case
  std::vector<std::pair<std::u16string, std::u16string>> attributes;  // names in lower case
  std::u16string Attribute(std::u16string_view attribute) const {
    for (const auto& [n, v] : attributes)
      if (n == attribute) return v;
    return {};
  }
};

struct HtmlScan {
  std::vector<HtmlTag> tags;
  std::vector<std::u16string> scripts;  // the text of each script element, as written
  // The decoded text of each textarea, with the tag that opened it.
  std::vector<std::pair<HtmlTag, std::u16string>> textareas;
};

inline std::u16string Lower(std::u16string_view s) {
  std::u16string out(s);
  for (char16_t& c : out)
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
  return out;
}

// The parser turns every CR LF and lone CR into LF, as browsers do.
inline HtmlScan ScanHtml(std::u16string_view html) {
  const std::string utf8 = ToUtf8(html);
  const std::unique_ptr<GumboOutput, void (*)(GumboOutput*)> output(
      gumbo_parse_with_options(&kGumboDefaultOptions, utf8.data(), utf8.size()),
      [](GumboOutput* out) { gumbo_destroy_output(&kGumboDefaultOptions, out); });
  HtmlScan scan;
  auto text = [](const GumboElement& element) {
    std::string inside;
    for (unsigned i = 0; i < element.children.length; ++i) {
      const auto* child = static_cast<const GumboNode*>(element.children.data[i]);
      if (child->type == GUMBO_NODE_TEXT || child->type == GUMBO_NODE_WHITESPACE)
        inside += child->v.text.text;
    }
    return FromUtf8(inside);
  };
  auto visit = [&](auto& self, const GumboNode* node) -> void {
    if (node->type != GUMBO_NODE_ELEMENT && node->type != GUMBO_NODE_TEMPLATE) return;
    const GumboElement& element = node->v.element;
    GumboStringPiece original = element.original_tag;
    gumbo_tag_from_original_text(&original);  // the name as written, for unknown elements
    HtmlTag tag{Lower(element.tag == GUMBO_TAG_UNKNOWN
                          ? FromUtf8(std::string(original.data, original.length))
                          : FromUtf8(gumbo_normalized_tagname(element.tag))),
                {}};
    for (unsigned i = 0; i < element.attributes.length; ++i) {
      const auto* a = static_cast<const GumboAttribute*>(element.attributes.data[i]);
      tag.attributes.emplace_back(FromUtf8(a->name), FromUtf8(a->value));
    }
    if (element.tag == GUMBO_TAG_SCRIPT) scan.scripts.push_back(text(element));
    if (element.tag == GUMBO_TAG_TEXTAREA) scan.textareas.emplace_back(tag, text(element));
    scan.tags.push_back(std::move(tag));
    for (unsigned i = 0; i < element.children.length; ++i)
      self(self, static_cast<const GumboNode*>(element.children.data[i]));
  };
  visit(visit, output->root);
  return scan;
}

// What is wrong with a script: an identifier `word` outside every string literal and comment
// (stored text that became code), or a string literal broken by a line break or never closed
// (a script that no longer parses). Empty when none of these.
inline std::string ScriptProblem(std::u16string_view script, std::u16string_view word) {
  auto isIdent = [](char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           c == u'_' || c == u'$';
  };
  for (size_t i = 0; i < script.size(); ++i) {
    const char16_t c = script[i];
    if (c == u'\'' || c == u'"') {
      for (++i; i < script.size() && script[i] != c; ++i) {
        if (script[i] == u'\\')
          ++i;
        else if (script[i] == u'\r' || script[i] == u'\n')
          return "a line break inside a string literal";
      }
      if (i >= script.size()) return "a string literal that never ends";
    } else if (script.substr(i, 2) == u"//") {
      while (i < script.size() && script[i] != u'\n') ++i;
    } else if (script.substr(i, 2) == u"/*") {
      i = std::min(script.find(u"*/", i + 2), script.size() - 1) + 1;
    } else if (script.substr(i, word.size()) == word && (i == 0 || !isIdent(script[i - 1])) &&
               (i + word.size() >= script.size() || !isIdent(script[i + word.size()]))) {
      return "'" + ToUtf8(word) + "' runs as code";
    }
  }
  return "";
}

}  // namespace ostrakan::testing
