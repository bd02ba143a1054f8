// Refusal of cross-site requests to the pages that change data or start work.
//
// Every delete of the site is a GET, so a link or an image on another site could act with the
// administrator's cookie. Besides the SameSite=Strict cookie, a request to an action page is
// refused when its Origin or Referer names a host:port other than the one in its Host header.
// A request with neither header passes: browsers send one on cross-site navigations.
#pragma once

#include <string_view>

#include "engine/http_exchange.h"

namespace ostrakan::engine {

// The pages that act: "*_ok.asp" (which covers the run and generator pages), "gather_*_update.asp",
// and any page whose query has action=del or action=alldel. `virtualPath` is "/admin/x.asp".
bool IsActionPage(std::string_view virtualPath, std::string_view queryString);

// True when Origin or Referer is present and does not name the Host of the request.
bool NamesAnotherSite(const HttpRequest& request);

// 403 with a sentence in the page's language, in GB2312.
HttpResponse CrossSiteRefusal();

}  // namespace ostrakan::engine
