#include <arpa/inet.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>

#include <mutex>

#include "platform/http/fetch_stop.h"
#include "platform/http/fetcher.h"
#include "platform/text/codepage.h"

namespace ostrakan::http {
namespace {

constexpr char kUserAgent[] =
    "Mozilla/5.0 (X11; Linux x86_64) AppleWebKit/537.36 (KHTML, like Gecko) "
    "Chrome/120.0 Safari/537.36";

// The addresses a fetch connected to: a transfer that began at a public address may not go on
// to a private one (a redirect, or a name that resolves differently the second time), so that
// a remote site cannot make the gatherer read the machine's own or its network's services.
struct Destinations {
  const std::function<bool(const sockaddr*)>* isPrivate;
  bool started = false, startedPublic = false, refused = false;
};

curl_socket_t OpenSocket(void* user, curlsocktype, curl_sockaddr* address) {
  auto* d = static_cast<Destinations*>(user);
  const bool isPrivate =
      *d->isPrivate ? (*d->isPrivate)(&address->addr) : IsPrivateAddress(&address->addr);
  if (!d->started) {
    d->started = true;
    d->startedPublic = !isPrivate;
  } else if (d->startedPublic && isPrivate) {
    d->refused = true;
    return CURL_SOCKET_BAD;
  }
  return socket(address->family, address->socktype, address->protocol);
}

struct Sink {
  std::string* body;
  size_t limit;
  bool tooLarge = false;
};

size_t Receive(char* data, size_t size, size_t count, void* user) {
  auto* sink = static_cast<Sink*>(user);
  size_t n = size * count;
  if (sink->body->size() + n > sink->limit) {
    sink->tooLarge = true;
    return 0;  // makes libcurl stop with a write error
  }
  sink->body->append(data, n);
  return n;
}

// libcurl calls this about once a second while a transfer runs, even when nothing arrives:
// a non-zero answer aborts the transfer.
int WatchStop(void*, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  return StopSignalled() ? 1 : 0;
}

class CurlFetcher : public Fetcher {
 public:
  explicit CurlFetcher(FetchLimits limits) : limits_(limits) {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
  }

  FetchResult Get(const std::string& address) override {
    FetchResult result;
    if (StopSignalled()) {
      result.error = "the server is stopping";
      return result;
    }
    CURL* curl = curl_easy_init();
    if (!curl) {
      result.error = "cannot start a transfer";
      return result;
    }
    Sink sink{&result.body, limits_.maxBodyBytes};
    Destinations destinations{&limits_.isPrivate};
    curl_easy_setopt(curl, CURLOPT_OPENSOCKETFUNCTION, OpenSocket);
    curl_easy_setopt(curl, CURLOPT_OPENSOCKETDATA, &destinations);
    curl_easy_setopt(curl, CURLOPT_URL, address.c_str());
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, limits_.maxRedirects);
    curl_easy_setopt(curl, CURLOPT_ACCEPT_ENCODING, "");  // every encoding libcurl can unpack
    curl_easy_setopt(curl, CURLOPT_USERAGENT, kUserAgent);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, limits_.connectTimeoutMs);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, limits_.totalTimeoutMs);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, limits_.lowSpeedBytesPerSecond);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, limits_.lowSpeedSeconds);
    curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE,
                     static_cast<curl_off_t>(limits_.maxBodyBytes));
    curl_easy_setopt(curl, CURLOPT_NOPROXY, "127.0.0.1,localhost,::1");
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, Receive);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &sink);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, WatchStop);
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    CURLcode code = curl_easy_perform(curl);
    if (code == CURLE_OK) {
      curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &result.status);
      result.completed = true;
    } else {
      result.body.clear();
      result.error = sink.tooLarge || code == CURLE_FILESIZE_EXCEEDED
                         ? "the answer is larger than the size limit"
                     : destinations.refused
                         ? "refused redirect from a public address to a private one"
                     : code == CURLE_ABORTED_BY_CALLBACK ? "the server is stopping"
                     : code == CURLE_OPERATION_TIMEDOUT  ? "time-out"
                     : code == CURLE_COULDNT_CONNECT     ? "connection refused"
                     : code == CURLE_TOO_MANY_REDIRECTS  ? "too many redirects"
                                                         : curl_easy_strerror(code);
    }
    curl_easy_cleanup(curl);
    return result;
  }

 private:
  FetchLimits limits_;
};

std::mutex defaultMutex;
std::shared_ptr<Fetcher>& DefaultSlot() {
  static std::shared_ptr<Fetcher> slot = MakeCurlFetcher();
  return slot;
}

}  // namespace

std::shared_ptr<Fetcher> MakeCurlFetcher(FetchLimits limits) {
  return std::make_shared<CurlFetcher>(limits);
}

std::shared_ptr<Fetcher> DefaultFetcher() {
  std::lock_guard lock(defaultMutex);
  return DefaultSlot();
}

void SetDefaultFetcher(std::shared_ptr<Fetcher> fetcher) {
  std::lock_guard lock(defaultMutex);
  DefaultSlot() = fetcher ? std::move(fetcher) : MakeCurlFetcher();
}

bool IsPrivateAddress(const sockaddr* address) {
  if (address->sa_family == AF_INET) {
    const auto* in = reinterpret_cast<const sockaddr_in*>(address);
    const uint32_t a = ntohl(in->sin_addr.s_addr);
    auto within = [a](uint32_t net, int bits) {
      return (a >> (32 - bits)) == (net >> (32 - bits));
    };
    return within(0x00000000, 8) || within(0x0A000000, 8) || within(0x7F000000, 8) ||
           within(0xA9FE0000, 16) || within(0xAC100000, 12) || within(0xC0A80000, 16) ||
           within(0x64400000, 10);
  }
  if (address->sa_family == AF_INET6) {
    const auto* in6 = reinterpret_cast<const sockaddr_in6*>(address);
    const uint8_t* b = in6->sin6_addr.s6_addr;
    if (IN6_IS_ADDR_V4MAPPED(&in6->sin6_addr)) {
      sockaddr_in v4{};
      v4.sin_family = AF_INET;
      std::memcpy(&v4.sin_addr, b + 12, 4);
      return IsPrivateAddress(reinterpret_cast<const sockaddr*>(&v4));
    }
    return IN6_IS_ADDR_LOOPBACK(&in6->sin6_addr) || IN6_IS_ADDR_UNSPECIFIED(&in6->sin6_addr) ||
           (b[0] & 0xFE) == 0xFC || (b[0] == 0xFE && (b[1] & 0xC0) == 0x80);
  }
  return true;  // no other family is fetched from
}

std::string EncodeAddress(std::u16string_view address) {
  static const char* hex = "0123456789ABCDEF";
  std::string out;
  auto escape = [&](unsigned char c) {
    out += '%';
    out += hex[c >> 4];
    out += hex[c & 15];
  };
  for (size_t i = 0; i < address.size(); ++i) {
    char16_t c = address[i];
    if (c > 0x20 && c < 0x7f) {
      out += static_cast<char>(c);
    } else if (c < 0x80) {
      escape(static_cast<unsigned char>(c));
    } else {
      size_t n = 1;
      if (c >= 0xD800 && c <= 0xDBFF && i + 1 < address.size()) n = 2;
      for (unsigned char b : text::Encode(address.substr(i, n), text::kAnsiCodePage)) escape(b);
      i += n - 1;
    }
  }
  return out;
}

}  // namespace ostrakan::http
