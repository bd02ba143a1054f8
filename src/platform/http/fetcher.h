// The seam through which every remote page is fetched: a Fetcher turns an address into a
// status and a body. The libcurl fetcher is the real one; tests put a double in its place
// with SetDefaultFetcher, so that the XML HTTP objects created afterwards use it.
#pragma once

#include <sys/socket.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace ostrakan::http {

// Limits of one fetch. The defaults suit a page request that waits on a remote site.
struct FetchLimits {
  long connectTimeoutMs = 15000;
  long lowSpeedBytesPerSecond = 1024;  // abort when slower than this ...
  long lowSpeedSeconds = 30;           // ... for this long
  long totalTimeoutMs = 120000;
  size_t maxBodyBytes = 16u << 20;  // after decompression; checked while receiving
  long maxRedirects = 10;
  // Which addresses count as private; IsPrivateAddress when unset. Tests, whose sites are all
  // on loopback, set it to take one of them for a public site.
  std::function<bool(const sockaddr*)> isPrivate;
};

struct FetchResult {
  bool completed = false;  // a whole answer arrived (whatever its status)
  long status = 0;         // the final status after redirects; 0 when none arrived
  std::string body;        // the (decompressed) body; empty unless completed
  std::string error;       // why the fetch did not complete, in words
};

class Fetcher {
 public:
  virtual ~Fetcher() = default;
  // A blocking GET of an http or https address (already in ASCII; see EncodeAddress).
  virtual FetchResult Get(const std::string& address) = 0;
};

// The libcurl fetcher: redirects followed (http and https only, also for redirects),
// compressed answers unpacked, a browser-like User-Agent, no signals. A fetch that began at a
// public address is refused any connection to a private one (a redirect to loopback or the
// local network); one that began at a private address (a rule for an intranet site) is not.
// `error` says why a fetch failed: "time-out", "connection refused", the size limit, a
// refused redirect, or libcurl's own words.
std::shared_ptr<Fetcher> MakeCurlFetcher(FetchLimits limits = {});

// Loopback, private (RFC 1918, unique local), link-local, shared and unspecified addresses.
bool IsPrivateAddress(const struct sockaddr* address);

// The fetcher that new XML HTTP objects use (the libcurl one unless a test set another).
std::shared_ptr<Fetcher> DefaultFetcher();
void SetDefaultFetcher(std::shared_ptr<Fetcher> fetcher);

// An address as it goes on the wire: ASCII stays, every other character is percent-encoded
// in code page 936 (a GB2312 rule's keyword reaches the remote site as GBK bytes); blanks and
// control characters are percent-encoded too.
std::string EncodeAddress(std::u16string_view address);

}  // namespace ostrakan::http
