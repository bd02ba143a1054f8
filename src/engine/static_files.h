// Static files of the site: content types, Last-Modified and conditional requests.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "engine/http_exchange.h"

namespace ostrakan::engine {

// The Content-Type for a file name. Text files of the site are in the ANSI code page, so
// they are announced as gb2312.
std::string ContentTypeFor(std::string_view fileName);

// The answer for a file that ResolveRequestPath allowed: 200 with the file, or 304 when the
// browser's If-Modified-Since matches.
HttpResponse ServeStaticFile(const std::filesystem::path& file, const HttpRequest& request);

}  // namespace ostrakan::engine
