// Fetching one remote page through the XML HTTP request objects of the object factory, and
// decoding it with the rule's charset.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/object_factory.h"

namespace ostrakan::gathering {

// A fetched page, or why there is none ("status 404", "time-out", "connection refused", the
// size limit, a refused redirect: the fetcher's words).
struct FetchedPage {
  std::optional<std::u16string> text;
  std::string why;
};

// Creates the first XML HTTP object the factory can make ("MSXML2.XMLHTTP.4.0", then
// "MSXML2.XMLHTTP.3.0", "MSXML2.XMLHTTP", "Microsoft.XMLHttp"), GETs the address and decodes
// the body with `charset`. Only a final status of 200 gives text.
FetchedPage FetchPage(const ObjectFactory& factory, std::u16string_view address,
                      std::u16string_view charset);

// The same, with "" for every failure (what the pages' GetHTTPPage gives).
std::u16string GetHttpPage(const ObjectFactory& factory, std::u16string_view address,
                           std::u16string_view charset);

// Why a fetch failed, in the words of the administration pages ("远程网站回答状态 404",
// "超时" ...); a reason it does not know is given as it is.
std::u16string FetchFailureText(std::string_view why);

}  // namespace ostrakan::gathering
