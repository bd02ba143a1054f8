// A small reader of the markup that pages write, as a browser would split it: tags with their
// attributes (values decoded from entities), the raw text of script elements, and the decoded
// text of textarea and title elements; and a reader of script text that finds what runs outside
// its string literals. Enough to tell whether stored text came out as text or as markup.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"

namespace ostrakan::testing {

struct HtmlTag {
  std::u16string name;  // lower case; "/p" for an end tag
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

// Character references as a browser decodes them in text and attribute values (the named ones
// that pages use, and numeric ones).
inline std::u16string DecodeEntities(std::u16string_view s) {
  static const std::pair<std::u16string_view, char16_t> kNamed[] = {
      {u"amp", u'&'}, {u"lt", u'<'}, {u"gt", u'>'}, {u"quot", u'"'}, {u"copy", u'\u00a9'}};
  std::u16string out;
  for (size_t i = 0; i < s.size(); ++i) {
    const size_t semi = s[i] == u'&' ? s.find(u';', i) : std::u16string_view::npos;
    const std::u16string name(semi - i <= 10 ? s.substr(i + 1, semi - i - 1) : u"");
    char32_t c = 0;
    for (const auto& [entity, decoded] : kNamed)
      if (name == entity) c = decoded;
    if (name.size() > 1 && name[0] == u'#') {
      const bool hex = name[1] == u'x' || name[1] == u'X';
      c = std::stoul(ToUtf8(name.substr(hex ? 2 : 1)), nullptr, hex ? 16 : 10);
    }
    if (c == 0 || c > 0xFFFF) {
      out += s[i];
    } else {
      out += static_cast<char16_t>(c);
      i = semi;
    }
  }
  return out;
}

inline HtmlScan ScanHtml(std::u16string_view html) {
  HtmlScan scan;
  auto isSpace = [](char16_t c) {
    return std::u16string_view(u" \t\r\n\f").find(c) != std::u16string_view::npos;
  };
  auto at = [&](size_t p) { return p < html.size() ? html[p] : u'\0'; };
  // Reads up to (not including) the first character for which `stop` is true.
  auto until = [&](size_t& p, auto stop) {
    const size_t from = p;
    while (p < html.size() && !stop(html[p])) ++p;
    return html.substr(from, p - from);
  };
  for (size_t i = html.find(u'<'); i < html.size(); i = html.find(u'<', i)) {
    if (html.substr(i, 4) == u"<!--") {
      i = std::min(html.find(u"-->", i + 4), html.size() - 3) + 3;
      continue;
    }
    const bool closing = at(i + 1) == u'/';
    size_t p = i + (closing ? 2 : 1);
    if (!((at(p) >= u'a' && at(p) <= u'z') || (at(p) >= u'A' && at(p) <= u'Z'))) {
      ++i;
      continue;
    }
    HtmlTag tag;
    tag.name = (closing ? u"/" : u"") +
               Lower(until(p, [&](char16_t c) { return isSpace(c) || c == u'>' || c == u'/'; }));
    while (p < html.size() && html[p] != u'>') {
      if (isSpace(html[p]) || html[p] == u'/') {
        ++p;
        continue;
      }
      const size_t nameAt = p++;  // an attribute's name may start with '='
      until(p, [&](char16_t c) { return isSpace(c) || c == u'>' || c == u'=' || c == u'/'; });
      std::u16string name = Lower(html.substr(nameAt, p - nameAt)), value;
      until(p, [&](char16_t c) { return !isSpace(c); });
      if (at(p) == u'=') {
        ++p;
        until(p, [&](char16_t c) { return !isSpace(c); });
        const char16_t quote = at(p) == u'"' || at(p) == u'\'' ? html[p++] : 0;
        value = DecodeEntities(
            until(p, [&](char16_t c) { return quote ? c == quote : isSpace(c) || c == u'>'; }));
        if (quote && p < html.size()) ++p;
      }
      tag.attributes.emplace_back(std::move(name), std::move(value));
    }
    i = std::min(p + 1, html.size());
    scan.tags.push_back(tag);
    // Raw and escapable raw text: everything up to the matching end tag is text.
    if (tag.name == u"script" || tag.name == u"textarea" || tag.name == u"title") {
      const size_t end = Lower(html.substr(i)).find(u"</" + tag.name);
      const std::u16string_view inside = html.substr(i, end);
      if (tag.name == u"script") scan.scripts.emplace_back(inside);
      if (tag.name == u"textarea") scan.textareas.emplace_back(tag, DecodeEntities(inside));
      i += inside.size();
    }
  }
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
