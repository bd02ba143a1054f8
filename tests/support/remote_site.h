// A fixture remote web site on loopback for gathering tests: a small threaded HTTP/1.1 server
// that answers each request target (path with query, else the path alone) with a canned
// reply, and remembers the targets it was asked for (bytes as sent, percent escapes kept).
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/http/fetcher.h"

namespace ostrakan::testing {

struct RemoteReply {
  RemoteReply(int s = 200, std::string b = "", std::vector<std::string> h = {})
      : status(s), body(std::move(b)), headers(std::move(h)) {}
  RemoteReply& Delay(int ms) { return delayMs = ms, *this; }
  RemoteReply& Stall() { return stall = true, *this; }
  RemoteReply& NoLength() { return noLength = true, *this; }

  int status;
  std::string body;
  std::vector<std::string> headers;  // extra "Name: value" lines (Location, Content-Encoding)
  int delayMs = 0;                   // wait before answering
  bool stall = false;                // send the head and a little of the body, then nothing more
  bool noLength = false;             // no Content-Length: the body ends when the connection closes
};

class RemoteSite {
 public:
  RemoteSite() {
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof a;
    if (bind(listener_, reinterpret_cast<sockaddr*>(&a), len) != 0 || listen(listener_, 64) != 0 ||
        getsockname(listener_, reinterpret_cast<sockaddr*>(&a), &len) != 0)
      throw std::runtime_error("remote site cannot listen");
    port_ = ntohs(a.sin_port);
    acceptor_ = std::thread([this] {
      for (int fd; (fd = accept(listener_, nullptr, nullptr)) >= 0 || !stopping_;) {
        std::lock_guard lock(mutex_);
        if (fd >= 0) workers_.emplace_back([this, fd] { Serve(fd); });
      }
    });
  }
  ~RemoteSite() {
    stopping_ = true;
    shutdown(listener_, SHUT_RDWR);
    close(listener_);
    acceptor_.join();
    for (auto& t : workers_) t.join();
  }

  void Set(const std::string& target, RemoteReply reply) {
    std::lock_guard lock(mutex_);
    replies_[target] = std::move(reply);
  }
  std::string Url(const std::string& target) const {
    return "http://127.0.0.1:" + std::to_string(port_) + target;
  }
  std::vector<std::string> Requests() const {
    std::lock_guard lock(mutex_);
    return requests_;
  }
  // A fetcher for which this site stands for a public one and every other address on
  // loopback (another RemoteSite) for a private one.
  std::shared_ptr<http::Fetcher> FetcherCallingThisSitePublic() const {
    http::FetchLimits limits;
    limits.isPrivate = [port = port_](const sockaddr* a) {
      return ntohs(reinterpret_cast<const sockaddr_in*>(a)->sin_port) != port;
    };
    return http::MakeCurlFetcher(limits);
  }

 private:
  void Serve(int fd) {
    std::string request;
    char buf[4096];
    for (ssize_t n;
         request.find("\r\n\r\n") == std::string::npos && (n = recv(fd, buf, sizeof buf, 0)) > 0;)
      request.append(buf, static_cast<size_t>(n));
    const size_t sp = request.find(' ');
    const std::string target =
        sp == std::string::npos ? "" : request.substr(sp + 1, request.find(' ', sp + 1) - sp - 1);
    RemoteReply reply{404, "not found"};
    {
      std::lock_guard lock(mutex_);
      requests_.push_back(target);
      auto it = replies_.find(target);
      if (it == replies_.end()) it = replies_.find(target.substr(0, target.find('?')));
      if (it != replies_.end()) reply = it->second;
    }
    Wait(reply.delayMs);
    std::string head = "HTTP/1.1 " + std::to_string(reply.status) +
                       " Canned\r\nContent-Type: text/html\r\nConnection: close\r\n";
    if (!reply.noLength && !reply.stall)
      head += "Content-Length: " + std::to_string(reply.body.size()) + "\r\n";
    for (const auto& h : reply.headers) head += h + "\r\n";
    const std::string bytes = head + "\r\n" + (reply.stall ? reply.body.substr(0, 10) : reply.body);
    for (size_t sent = 0; sent < bytes.size();) {
      const ssize_t n = send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
      if (n <= 0) break;
      sent += static_cast<size_t>(n);
    }
    if (reply.stall) Wait(1 << 30);
    close(fd);
  }

  // Sleeps `ms`, or less when the site is being closed.
  void Wait(int ms) {
    for (int waited = 0; waited < ms && !stopping_; waited += 10)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }

  int listener_ = socket(AF_INET, SOCK_STREAM, 0);
  int port_ = 0;
  std::atomic<bool> stopping_{false};
  std::thread acceptor_;
  mutable std::mutex mutex_;
  std::vector<std::thread> workers_;
  std::map<std::string, RemoteReply> replies_;
  std::vector<std::string> requests_;
};

}  // namespace ostrakan::testing
