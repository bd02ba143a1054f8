#include "engine/multipart_form.h"

#include <strings.h>

#include <map>

namespace ostrakan::engine {
namespace {

bool IEqual(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

std::string_view Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

// "type; a=1; b=\"two\"": the type, and the parameters with their names lower-cased. A
// parameter given twice, without '=', or with an unterminated quote makes it nullopt.
struct HeaderValue {
  std::string type;
  std::map<std::string, std::string> params;
};
std::optional<HeaderValue> ParseHeaderValue(std::string_view v) {
  HeaderValue out;
  size_t semi = v.find(';');
  out.type = std::string(Trim(v.substr(0, semi)));
  v = semi == std::string_view::npos ? std::string_view() : v.substr(semi + 1);
  while (!Trim(v).empty()) {
    v = Trim(v);
    const size_t eq = v.find('=');
    if (eq == std::string_view::npos) return std::nullopt;
    std::string key(Trim(v.substr(0, eq)));
    for (char& c : key) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    v = Trim(v.substr(eq + 1));
    std::string value;
    if (!v.empty() && v.front() == '"') {
      size_t i = 1;
      for (; i < v.size() && v[i] != '"'; ++i) {
        if (v[i] == '\\' && i + 1 < v.size()) ++i;
        value += v[i];
      }
      if (i >= v.size()) return std::nullopt;
      v = Trim(v.substr(i + 1));
      if (!v.empty() && v.front() != ';') return std::nullopt;
    } else {
      const size_t end = v.find(';');
      value = std::string(Trim(v.substr(0, end)));
      v = v.substr(end == std::string_view::npos ? v.size() : end);
    }
    if (!v.empty()) v.remove_prefix(1);
    if (key.empty() || !out.params.emplace(key, value).second) return std::nullopt;
  }
  return out;
}

bool IsBoundaryChar(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
         std::string_view("'()+_,-./:=? ").find(c) != std::string_view::npos;
}

}  // namespace

std::string MultipartBoundary(std::string_view contentType) {
  const auto value = ParseHeaderValue(contentType);
  if (!value || !IEqual(value->type, "multipart/form-data"))
    throw MultipartError("the form upload has a malformed Content-Type");
  auto it = value->params.find("boundary");
  const std::string b = it == value->params.end() ? "" : it->second;
  bool valid = !b.empty() && b.size() <= 70 && b.back() != ' ';
  for (char c : b) valid = valid && IsBoundaryChar(c);
  if (!valid) throw MultipartError("the form upload names no valid boundary");
  return b;
}

std::vector<FormPart> ReadMultipart(std::string_view body, std::string_view boundary,
                                    const MultipartLimits& limits) {
  const std::string delimiter = "--" + std::string(boundary);
  const std::string between = "\r\n" + delimiter;
  if (!body.starts_with(delimiter))
    throw MultipartError("the form upload does not begin with its boundary");
  std::vector<FormPart> parts;
  size_t fileBytes = 0;
  size_t at = delimiter.size();
  for (;;) {
    std::string_view rest = body.substr(at);
    if (rest.starts_with("--")) {
      if (rest != "--" && rest != "--\r\n")
        throw MultipartError("the form upload has data after its closing boundary");
      return parts;
    }
    if (!rest.starts_with("\r\n"))
      throw MultipartError("the form upload has a boundary line that does not end in CRLF");
    if (parts.size() == limits.maxParts)
      throw MultipartError("the form upload has more than " + std::to_string(limits.maxParts) +
                           " fields");
    at += 2;
    const size_t headEnd = body.find("\r\n\r\n", at);
    if (headEnd == std::string_view::npos || headEnd - at > limits.maxHeadBytes)
      throw MultipartError("the form upload has a part whose header lines do not end in time");
    FormPart part;
    bool disposition = false;
    for (std::string_view head = body.substr(at, headEnd - at + 2); !head.empty();) {
      const size_t eol = head.find("\r\n");
      const std::string_view line = head.substr(0, eol);
      head.remove_prefix(eol + 2);
      const size_t colon = line.find(':');
      if (line.empty() || colon == std::string_view::npos ||
          line.find('\n') != std::string_view::npos || line.find('\r') != std::string_view::npos ||
          line.front() == ' ' || line.front() == '\t')
        throw MultipartError("the form upload has a malformed header line in a part");
      const std::string_view name = line.substr(0, colon), value = line.substr(colon + 1);
      if (IEqual(name, "content-disposition")) {
        const auto v = ParseHeaderValue(value);
        if (disposition || !v || !IEqual(v->type, "form-data") || !v->params.contains("name"))
          throw MultipartError("the form upload has a part without a form-data name");
        disposition = true;
        part.name = v->params.at("name");
        if (auto f = v->params.find("filename"); f != v->params.end()) part.fileName = f->second;
      } else if (IEqual(name, "content-type")) {
        part.contentType = std::string(Trim(value));
      } else if (IEqual(name, "content-transfer-encoding")) {
        const std::string_view coding = Trim(value);
        if (!IEqual(coding, "binary") && !IEqual(coding, "8bit") && !IEqual(coding, "7bit"))
          throw MultipartError(
              "the form upload uses a transfer encoding this server does not read");
      }
    }
    if (!disposition) throw MultipartError("the form upload has a part without a form-data name");
    at = headEnd + 4;
    const size_t end = body.find(between, at);
    if (end == std::string_view::npos)
      throw MultipartError("the form upload ends before its closing boundary");
    part.data = std::string(body.substr(at, end - at));
    if (part.fileName && (fileBytes += part.data.size()) > limits.maxFileBytes)
      throw MultipartError("the uploaded files are larger than " +
                           (limits.maxFileBytes % (1u << 20) == 0
                                ? std::to_string(limits.maxFileBytes >> 20) + " MiB"
                                : std::to_string(limits.maxFileBytes) + " bytes"));
    parts.push_back(std::move(part));
    at = end + between.size();
  }
}

}  // namespace ostrakan::engine
