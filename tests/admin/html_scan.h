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
  std::u16string out;
  for (size_t i = 0; i < s.size(); ++i) {
    const size_t semi = s[i] == u'&' ? s.find(u';', i) : std::u16string_view::npos;
    const std::u16string name(semi - i <= 10 ? s.substr(i + 1, semi - i - 1) : u"");
    char32_t c = name == u"amp"    ? u'&'
                 : name == u"lt"   ? u'<'
                 : name == u"gt"   ? u'>'
                 : name == u"quot" ? u'"'
                 : name == u"copy" ? u'\u00a9'
                                   : 0;
    if (name.size() > 1 && name[0] == u'#') {
      const bool hex = name[1] == u'x' || name[1] == u'X';
      c = static_cast<char32_t>(
          std::stoul(ToUtf8(name.substr(hex ? 2 : 1)), nullptr, hex ? 16 : 10));
    }
    if (c == 0 || c > 0xFFFF) {
      out += s[i];
      continue;
    }
    out += static_cast<char16_t>(c);
    i = semi;
  }
  return out;
}

inline HtmlScan ScanHtml(std::u16string_view html) {
  HtmlScan scan;
  auto isSpace = [](char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == u'\f';
  };
  auto isLetter = [](char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); };
  size_t i = 0;
  while (i < html.size()) {
    if (html[i] != u'<') {
      ++i;
      continue;
    }
    if (html.substr(i, 4) == u"<!--") {
      const size_t end = html.find(u"-->", i + 4);
      i = end == std::u16string_view::npos ? html.size() : end + 3;
      continue;
    }
    const bool closing = i + 1 < html.size() && html[i + 1] == u'/';
    const size_t nameAt = i + (closing ? 2 : 1);
    if (nameAt >= html.size() || !isLetter(html[nameAt])) {
      ++i;
      continue;
    }
    HtmlTag tag;
    size_t p = nameAt;
    while (p < html.size() && !isSpace(html[p]) && html[p] != u'>' && html[p] != u'/') ++p;
    tag.name = (closing ? u"/" : u"") + Lower(html.substr(nameAt, p - nameAt));
    while (p < html.size() && html[p] != u'>') {
      if (isSpace(html[p]) || html[p] == u'/') {
        ++p;
        continue;
      }
      const size_t attrAt = p;
      while (p < html.size() && !isSpace(html[p]) && html[p] != u'>' && html[p] != u'=' &&
             !(p > attrAt && html[p] == u'/'))
        ++p;
      std::u16string name = Lower(html.substr(attrAt, p - attrAt));
      std::u16string value;
      while (p < html.size() && isSpace(html[p])) ++p;
      if (p < html.size() && html[p] == u'=') {
        ++p;
        while (p < html.size() && isSpace(html[p])) ++p;
        if (p < html.size() && (html[p] == u'"' || html[p] == u'\'')) {
          const size_t end = html.find(html[p], p + 1);
          const size_t stop = end == std::u16string_view::npos ? html.size() : end;
          value = DecodeEntities(html.substr(p + 1, stop - p - 1));
          p = stop == html.size() ? stop : stop + 1;
        } else {
          const size_t valueAt = p;
          while (p < html.size() && !isSpace(html[p]) && html[p] != u'>') ++p;
          value = DecodeEntities(html.substr(valueAt, p - valueAt));
        }
      }
      tag.attributes.emplace_back(std::move(name), std::move(value));
    }
    i = p < html.size() ? p + 1 : p;
    scan.tags.push_back(tag);
    // Raw and escapable raw text: everything up to the matching end tag is text.
    if (tag.name == u"script" || tag.name == u"textarea" || tag.name == u"title") {
      const std::u16string lower = Lower(html.substr(i));
      const size_t end = lower.find(u"</" + tag.name);
      const std::u16string_view inside =
          html.substr(i, end == std::u16string::npos ? html.size() - i : end);
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
      const size_t end = script.find(u"*/", i + 2);
      i = end == std::u16string_view::npos ? script.size() : end + 1;
    } else if (script.substr(i, word.size()) == word && (i == 0 || !isIdent(script[i - 1])) &&
               (i + word.size() >= script.size() || !isIdent(script[i + word.size()]))) {
      return "'" + ToUtf8(word) + "' runs as code";
    }
  }
  return "";
}

}  // namespace ostrakan::testing
