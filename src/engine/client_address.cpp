#include "engine/client_address.h"

#include <arpa/inet.h>

#include <string_view>

namespace ostrakan::engine {
namespace {

bool IsLoopback(const std::string& address) {
  return address.starts_with("127.") || address == "::1";
}

// The address in its usual text form, or "" when `text` is not one.
std::string Normalized(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  if (text.empty() || text.size() >= INET6_ADDRSTRLEN) return "";
  std::string s(text);
  unsigned char bytes[16];
  char out[INET6_ADDRSTRLEN];
  if (inet_pton(AF_INET, s.c_str(), bytes) == 1)
    return inet_ntop(AF_INET, bytes, out, sizeof out) ? out : "";
  if (inet_pton(AF_INET6, s.c_str(), bytes) == 1)
    return inet_ntop(AF_INET6, bytes, out, sizeof out) ? out : "";
  return "";
}

}  // namespace

std::string ClientAddress(const std::string& peer, const std::string& realIp, bool behindProxy) {
  if (!behindProxy || !IsLoopback(peer) || realIp.empty()) return peer;
  std::string client = Normalized(realIp);
  return client.empty() ? peer : client;
}

}  // namespace ostrakan::engine
