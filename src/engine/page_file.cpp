#include "engine/page_file.h"

#include "engine/assignment_file.h"
#include "platform/text/codepage.h"

#include <optional>

namespace ostrakan::engine {
namespace {

bool IsNameStart(char16_t c) {
  return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_';
}
bool IsDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}
bool IsNameChar(char16_t c) {
  return IsNameStart(c) || IsDigit(c) || c == u'.';
}
bool IsSpace(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

std::string Quoted(std::u16string_view s) {
  return "'" + ToUtf8(s) + "'";
}

struct Token {
  enum class Kind { Name, String, Number, Symbol };
  Kind kind;
  std::u16string text;
};

// Tokens of one statement or value.
std::vector<Token> Tokenize(std::u16string_view s, int line) {
  std::vector<Token> tokens;
  size_t i = 0;
  while (i < s.size()) {
    char16_t c = s[i];
    if (IsSpace(c)) {
      ++i;
    } else if (IsNameStart(c)) {
      size_t start = i;
      while (i < s.size() && IsNameChar(s[i])) ++i;
      tokens.push_back({Token::Kind::Name, std::u16string(s.substr(start, i - start))});
    } else if (IsDigit(c) || (c == u'-' && i + 1 < s.size() && IsDigit(s[i + 1]))) {
      size_t start = i++;
      while (i < s.size() && IsDigit(s[i])) ++i;
      tokens.push_back({Token::Kind::Number, std::u16string(s.substr(start, i - start))});
    } else if (c == u'"') {
      std::u16string value;
      if (!ReadQuotedLiteral(s, i, value)) throw PageSyntaxError(line, "unterminated string");
      tokens.push_back({Token::Kind::String, std::move(value)});
    } else if (c == u'=' || c == u'(' || c == u')') {
      tokens.push_back({Token::Kind::Symbol, std::u16string(1, c)});
      ++i;
    } else {
      throw PageSyntaxError(line, "unexpected character " + Quoted(s.substr(i, 1)));
    }
  }
  return tokens;
}

bool IsSymbol(const std::vector<Token>& t, size_t i, char16_t c) {
  return i < t.size() && t[i].kind == Token::Kind::Symbol && t[i].text[0] == c;
}

bool IsPlainName(const std::u16string& name) {
  return name.find(u'.') == std::u16string::npos;
}

std::optional<PageValue::Kind> FunctionKind(std::u16string_view name) {
  using K = PageValue::Kind;
  static const std::pair<std::u16string_view, K> kFunctions[] = {
      {u"Request", K::Request},   {u"Request.QueryString", K::QueryString},
      {u"Request.Form", K::Form}, {u"Request.ServerVariables", K::ServerVariable},
      {u"Session", K::Session},   {u"Setting", K::Setting},
  };
  for (const auto& [n, k] : kFunctions)
    if (IEquals(n, name)) return k;
  return std::nullopt;
}

// A whole value: tokens [i, end) must be exactly one value.
PageValue ParseValue(const std::vector<Token>& t, size_t i, int line) {
  if (i >= t.size()) throw PageSyntaxError(line, "missing value");
  PageValue v;
  const Token& first = t[i];
  size_t used = 1;
  if (first.kind == Token::Kind::String) {
    v.literal = Variant(first.text);
  } else if (first.kind == Token::Kind::Number) {
    if (first.text.size() > 10) throw PageSyntaxError(line, "number out of range");
    long long n = std::stoll(ToUtf8(first.text));
    if (n < INT32_MIN || n > INT32_MAX) throw PageSyntaxError(line, "number out of range");
    v.literal = Variant(static_cast<int32_t>(n));
  } else if (first.kind == Token::Kind::Name && IsSymbol(t, i + 1, u'(')) {
    auto kind = FunctionKind(first.text);
    if (!kind) throw PageSyntaxError(line, "unknown function " + Quoted(first.text));
    if (i + 2 >= t.size() || t[i + 2].kind != Token::Kind::String || !IsSymbol(t, i + 3, u')'))
      throw PageSyntaxError(line, ToUtf8(first.text) + " takes one quoted name");
    v.kind = *kind;
    v.name = t[i + 2].text;
    used = 4;
  } else if (first.kind == Token::Kind::Name && IsPlainName(first.text)) {
    v.kind = PageValue::Kind::Property;
    v.name = first.text;
  } else {
    throw PageSyntaxError(line, "cannot read value " + Quoted(first.text));
  }
  if (i + used != t.size()) throw PageSyntaxError(line, "unexpected text after the value");
  return v;
}

void ParseStatement(std::u16string_view s, int line, std::vector<PageNode>& out) {
  std::vector<Token> t = Tokenize(s, line);
  if (t.empty()) return;
  size_t i = 0;
  if (t[0].kind == Token::Kind::Name && IEquals(t[0].text, u"Call") && t.size() > 1) i = 1;
  if (t[i].kind != Token::Kind::Name || !IsPlainName(t[i].text))
    throw PageSyntaxError(line, "cannot read the statement");
  PageNode node;
  node.line = line;
  node.text = t[i].text;
  bool emptyParens = IsSymbol(t, i + 1, u'(') && IsSymbol(t, i + 2, u')') && t.size() == i + 3;
  if (t.size() == i + 1 || emptyParens) {
    node.kind = PageNode::Kind::Call;
  } else if (i == 0 && IsSymbol(t, 1, u'=')) {
    node.kind = PageNode::Kind::Assign;
    node.value = ParseValue(t, 2, line);
  } else {
    throw PageSyntaxError(line, "cannot read the statement");
  }
  out.push_back(std::move(node));
}

class Parser {
 public:
  explicit Parser(std::u16string_view src) : src_(src) {}

  PageFile Run() {
    size_t pos = 0;
    while (pos < src_.size()) {
      size_t open = src_.find(u"<%", pos);
      AddText(src_.substr(pos, open == std::u16string_view::npos ? open : open - pos));
      if (open == std::u16string_view::npos) break;
      char16_t marker = open + 2 < src_.size() ? src_[open + 2] : u'\0';
      size_t start = open + 2 + (marker == u'@' || marker == u'=' ? 1 : 0);
      size_t close = FindClose(start);
      if (close == std::u16string_view::npos)
        throw PageSyntaxError(LineAt(open), "'<%' without a closing '%>'");
      std::u16string_view content = src_.substr(start, close - start);
      pos = close + 2;
      if (marker == u'=') {
        PageNode node{PageNode::Kind::Write, LineAt(start), u"", {}, {}};
        node.value = ParseValue(Tokenize(content, node.line), 0, node.line);
        page_.nodes.push_back(std::move(node));
        continue;
      }
      if (marker == u'@')
        ParseDirective(content, LineAt(start));
      else
        ParseCode(content, start);
      if (src_.substr(pos).starts_with(u"\r\n"))
        pos += 2;
      else if (src_.substr(pos).starts_with(u"\n"))
        pos += 1;
    }
    Check();
    return std::move(page_);
  }

 private:
  int LineAt(size_t offset) {
    // Lines are counted incrementally; offsets only grow.
    for (; counted_ < offset && counted_ < src_.size(); ++counted_)
      if (src_[counted_] == u'\n') ++line_;
    return line_;
  }

  // The "%>" that closes a block starting at `from`, outside string literals; a comment runs
  // to the end of its line but a "%>" inside it still closes the block.
  size_t FindClose(size_t from) const {
    bool inString = false, inComment = false;
    for (size_t i = from; i + 1 < src_.size(); ++i) {
      char16_t c = src_[i];
      if (c == u'\n' || c == u'\r') {
        inString = inComment = false;
      } else if (inString) {
        if (c == u'"') inString = false;
      } else if (c == u'%' && src_[i + 1] == u'>') {
        return i;
      } else if (!inComment && c == u'"') {
        inString = true;
      } else if (c == u'\'') {
        inComment = true;
      }
    }
    return std::u16string_view::npos;
  }

  void AddText(std::u16string_view text) {
    if (text.empty()) return;
    if (!page_.nodes.empty() && page_.nodes.back().kind == PageNode::Kind::Text) {
      page_.nodes.back().text += text;
      return;
    }
    PageNode node{PageNode::Kind::Text, 0, std::u16string(text), {}, {}};
    node.line = LineAt(static_cast<size_t>(text.data() - src_.data()));
    page_.nodes.push_back(std::move(node));
  }

  void ParseDirective(std::u16string_view content, int line) {
    std::vector<Token> t = Tokenize(content, line);
    if (t.empty()) throw PageSyntaxError(line, "empty directive");
    for (size_t i = 0; i < t.size(); i += 3) {
      if (t[i].kind != Token::Kind::Name || !IsSymbol(t, i + 1, u'=') || i + 2 >= t.size() ||
          t[i + 2].kind != Token::Kind::String)
        throw PageSyntaxError(line, "a directive is Name=\"value\"");
      const std::u16string& value = t[i + 2].text;
      if (IEquals(t[i].text, u"Component")) {
        if (!page_.component.empty()) throw PageSyntaxError(line, "a second Component directive");
        if (value.empty()) throw PageSyntaxError(line, "empty Component name");
        page_.component = value;
      } else if (IEquals(t[i].text, u"Rule")) {
        if (!page_.rule.empty()) throw PageSyntaxError(line, "a second Rule directive");
        if (value.empty() || value == u"." || value == u".." ||
            value.find_first_of(u"/\\") != std::u16string::npos)
          throw PageSyntaxError(line, "Rule names a file in the page's folder");
        page_.rule = value;
        ruleLine_ = line;
      } else {
        throw PageSyntaxError(
            line, "unknown directive " + Quoted(t[i].text) + " (expected Component or Rule)");
      }
    }
  }

  // Splits a code block into statements at line ends and ':' outside strings, dropping
  // comments.
  void ParseCode(std::u16string_view content, size_t offset) {
    size_t start = 0;
    bool inString = false, inComment = false;
    auto flush = [&](size_t end) {
      if (end > start)
        ParseStatement(content.substr(start, end - start), LineAt(offset + start), page_.nodes);
    };
    for (size_t i = 0; i <= content.size(); ++i) {
      char16_t c = i < content.size() ? content[i] : u'\n';
      if (c == u'\n' || c == u'\r') {
        if (!inComment) flush(i);
        start = i + 1;
        inString = inComment = false;
      } else if (inComment) {
        continue;
      } else if (c == u'"') {
        inString = !inString;
      } else if (!inString && c == u'\'') {
        flush(i);
        inComment = true;
      } else if (!inString && c == u':') {
        flush(i);
        start = i + 1;
      }
    }
  }

  void Check() {
    if (!page_.rule.empty() && page_.component.empty())
      throw PageSyntaxError(ruleLine_, "a Rule directive needs a Component directive");
    if (!page_.component.empty()) return;
    for (const PageNode& n : page_.nodes) {
      bool usesComponent =
          n.kind == PageNode::Kind::Call || n.kind == PageNode::Kind::Assign ||
          (n.kind == PageNode::Kind::Write && n.value.kind == PageValue::Kind::Property);
      if (usesComponent)
        throw PageSyntaxError(n.line, "'" + ToUtf8(n.text.empty() ? n.value.name : n.text) +
                                          "' needs a Component directive");
    }
  }

  std::u16string_view src_;
  PageFile page_;
  size_t counted_ = 0;
  int line_ = 1;
  int ruleLine_ = 0;
};

}  // namespace

PageSyntaxError::PageSyntaxError(int l, const std::string& m)
    : std::runtime_error("line " + std::to_string(l) + ": " + m), line(l), message(m) {}

PageFile ParsePageFile(std::u16string_view text) {
  PageFile page = Parser(text).Run();
  for (PageNode& node : page.nodes)
    if (node.kind == PageNode::Kind::Text)
      node.ansi = ostrakan::text::Encode(node.text, ostrakan::text::kAnsiCodePage);
  return page;
}

}  // namespace ostrakan::engine
