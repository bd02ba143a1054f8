// The blocks that most pages share: the page header with the administrator guard, and the
// connection block.
#pragma once

#include "frame/component.h"
#include "frame/markup.h"

namespace ostrakan {

// Forbids caching of the answer (ExpiresAbsolute yesterday, Expires 0, Cache-Control no-cache,
// plus no-store so that no copy of an administration page outlives the sign-out, Pragma
// No-Cache), then refuses a caller whose Session variable named by `adminSession` is empty:
// the alert sends the top frame to index.asp and the page ends.
void PageHeaderGuard(Response& response, const Session& session, const Variant& adminSession);
// The same for the request being served (the component-side form).
void PageHeaderGuard(const Variant& adminSession);

// Opens the database named by `db` (relative to the site root; the pages live one folder
// below it): `connstr` becomes the Access connection string of the mapped path, `conn` the
// open connection. When the open fails, the driver's description is logged for `method`,
// `conn` becomes Nothing, the page says that the database settings in Setup.asp are wrong,
// and ends.
void OpenConnection(const Component& page, std::u16string_view method, const Variant& db,
                    Variant& connstr, Variant& conn);

// Closes and releases a connection or record set held in a property (Nothing afterwards).
void CloseAndRelease(Variant& object);

// Writes `markup` and ends the page.
[[noreturn]] void WriteAndEnd(Response& response, const Markup& markup);
// The same on the response being served (the component-side form).
[[noreturn]] void WriteAndEnd(const Markup& markup);

}  // namespace ostrakan
