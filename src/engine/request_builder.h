// Builds the Request object of a page from the HTTP request: the query string and an
// application/x-www-form-urlencoded or multipart/form-data body decoded with the session's code
// page (uploaded files kept as bytes), the cookies, and the server variables.
#pragma once

#include <memory>
#include <string>

#include "engine/http_exchange.h"
#include "frame/request.h"

namespace ostrakan::engine {

// `pagePath` is the virtual path of the page file that runs ("/admin/index.asp" for
// "/admin/"). A multipart body that the strict reader refuses raises MultipartError.
std::shared_ptr<Request> BuildRequest(const HttpRequest& http, const std::string& pagePath,
                                      int codePage);

}  // namespace ostrakan::engine
