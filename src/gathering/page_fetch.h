// Fetching one remote page through the XML HTTP request objects of the object factory, and
// decoding it with the rule's charset.
#pragma once

#include <string>
#include <string_view>

#include "platform/object_factory.h"

namespace ostrakan::gathering {

// Creates the first XML HTTP object the factory can make ("MSXML2.XMLHTTP.4.0", then
// "MSXML2.XMLHTTP.3.0", "MSXML2.XMLHTTP", "Microsoft.XMLHttp"), GETs the address and decodes
// the body with `charset`. Only a final status of 200 gives text; every failure gives "".
std::u16string GetHttpPage(const ObjectFactory& factory, std::u16string_view address,
                           std::u16string_view charset);

}  // namespace ostrakan::gathering
