// The status line and header fields of an answer, as they go on the wire.
#pragma once

#include <string>

#include "engine/http_exchange.h"

namespace ostrakan::engine {

// "Not Found" for 404 and so on; "" for a code without a reason phrase here.
const char* StatusText(int status);

// Whether an answer with this status has no body (1xx, 204, 304).
bool IsBodyless(int status);

// The status line, the answer's own headers (names that are not tokens dropped, framing
// headers replaced by the server's, line breaks in values made blanks), Content-Length unless
// bodyless, Date and Connection, and the empty line.
std::string ResponseHead(const HttpResponse& r, size_t contentLength, bool keepAlive);

}  // namespace ostrakan::engine
