// A strict reader of multipart/form-data bodies (forms that upload a file).
//
// Only what browsers send is taken: the body starts with the first delimiter, every line end
// of the framing is CRLF, every part has a Content-Disposition of form-data with a name, and
// the body ends with the closing delimiter. Anything else, and a body beyond the limits, is
// refused with one sentence, so that a page never sees half a form.
#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ostrakan::engine {

struct MultipartLimits {
  size_t maxParts = 64;
  size_t maxHeadBytes = 4096;      // the header lines of one part
  size_t maxFileBytes = 4u << 20;  // all the files of one form together
};

struct MultipartError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct FormPart {
  std::string name;                     // bytes as sent (the page's code page)
  std::optional<std::string> fileName;  // set for a file field, even when empty (no file chosen)
  std::string contentType;              // as sent; "" when absent
  std::string data;
};

// The boundary named by a "multipart/form-data; boundary=..." Content-Type (quoted or not, 1 to
// 70 characters of those RFC 2046 allows); MultipartError when there is none.
std::string MultipartBoundary(std::string_view contentType);

// The parts of `body` in order.
std::vector<FormPart> ReadMultipart(std::string_view body, std::string_view boundary,
                                    const MultipartLimits& limits = {});

}  // namespace ostrakan::engine
