// A small HTTP client on libcurl for talking to the engine over loopback.
#pragma once

#include <curl/curl.h>

#include <string>
#include <utility>
#include <vector>

namespace ostrakan::testing {

struct HttpReply {
  long status = 0;
  std::vector<std::pair<std::string, std::string>> headers;  // names lower-cased
  std::string body;
  std::string error;  // set when the transfer failed

  std::vector<std::string> All(std::string_view name) const {
    std::vector<std::string> out;
    for (const auto& [n, v] : headers)
      if (n == name) out.push_back(v);
    return out;
  }
  std::string Header(std::string_view name) const {
    auto all = All(name);
    return all.empty() ? "" : all[0];
  }
  // The value of the session cookie set by this reply, or "".
  std::string SessionCookie() const {
    for (const std::string& c : All("set-cookie"))
      if (c.starts_with("OSTRAKANSESSION=")) return c.substr(16, c.find(';') - 16);
    return "";
  }
};

class HttpClient {
 public:
  explicit HttpClient(int port) : base_("http://127.0.0.1:" + std::to_string(port)) {}

  // Sends from another loopback address ("127.0.0.2"), as a second client machine would.
  void From(std::string address) { from_ = std::move(address); }

  // `path` is sent exactly as written (no "../" resolving).
  HttpReply Send(const std::string& method, const std::string& path, const std::string& body = "",
                 std::vector<std::string> headers = {}) const {
    HttpReply reply;
    CURL* curl = curl_easy_init();
    curl_easy_setopt(curl, CURLOPT_URL, (base_ + path).c_str());
    curl_easy_setopt(curl, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 30L);
    curl_easy_setopt(curl, CURLOPT_PROXY, "");
    if (!from_.empty()) curl_easy_setopt(curl, CURLOPT_INTERFACE, from_.c_str());
    if (method == "HEAD") {
      curl_easy_setopt(curl, CURLOPT_NOBODY, 1L);
    } else if (method == "POST") {
      curl_easy_setopt(curl, CURLOPT_POSTFIELDS, body.data());
      curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    } else if (method != "GET") {
      curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, method.c_str());
    }
    curl_slist* list = nullptr;
    for (const std::string& h : headers) list = curl_slist_append(list, h.c_str());
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, list);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &Collect);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &reply.body);
    if (CURLcode rc = curl_easy_perform(curl); rc != CURLE_OK) reply.error = curl_easy_strerror(rc);
    // The headers of the last response (not of a "100 Continue" before it).
    for (curl_header* h = nullptr; (h = curl_easy_nextheader(curl, CURLH_HEADER, -1, h));) {
      std::string name = h->name;
      for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      reply.headers.emplace_back(name, h->value);
    }
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &reply.status);
    curl_slist_free_all(list);
    curl_easy_cleanup(curl);
    return reply;
  }
  HttpReply Get(const std::string& path, std::vector<std::string> headers = {}) const {
    return Send("GET", path, "", std::move(headers));
  }
  HttpReply Post(const std::string& path, const std::string& form,
                 std::vector<std::string> headers = {}) const {
    headers.push_back("Content-Type: application/x-www-form-urlencoded");
    return Send("POST", path, form, std::move(headers));
  }

 private:
  static size_t Collect(char* data, size_t size, size_t n, void* out) {
    static_cast<std::string*>(out)->append(data, size * n);
    return size * n;
  }

  std::string base_;
  std::string from_;
};

}  // namespace ostrakan::testing
