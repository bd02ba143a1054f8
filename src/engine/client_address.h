// The address a request comes from, for REMOTE_ADDR and the sign-in throttle.
#pragma once

#include <string>

namespace ostrakan::engine {

// `peer` is the connection's address. Behind a proxy on this machine (`behindProxy`), a
// request from a loopback peer carries the client's address in X-Real-IP: that is taken when
// it is an IPv4 or IPv6 address (blanks around it allowed), and the peer's address otherwise.
std::string ClientAddress(const std::string& peer, const std::string& realIp, bool behindProxy);

}  // namespace ostrakan::engine
