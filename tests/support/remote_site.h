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
#include <functional>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace ostrakan::testing {

struct RemoteReply {
  RemoteReply(int s = 200, std::string b = "", std::vector<std::string> h = {})
      : status(s), body(std::move(b)), headers(std::move(h)) {}
  RemoteReply& Delay(int ms) { return delayMs = ms, *this; }
  RemoteReply& Stall() { return stall = true, *this; }
  RemoteReply& NoLength() { return noLength = true, *this; }
  RemoteReply& Type(std::string t) { return contentType = std::move(t), *this; }

  int status;
  std::string body;
  std::vector<std::string> headers;  // extra "Name: value" lines (Location, Content-Encoding)
  std::string contentType = "text/html";
  int delayMs = 0;        // wait before answering
  bool stall = false;     // send the head and a little of the body, then nothing more
  bool noLength = false;  // no Content-Length: the body ends when the connection closes
};

class RemoteSite {
 public:
  RemoteSite() {
    listener_ = socket(AF_INET, SOCK_STREAM, 0);
    int on = 1;
    setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener_, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0 || listen(listener_, 64))
      throw std::runtime_error("remote site cannot listen");
    socklen_t len = sizeof a;
    getsockname(listener_, reinterpret_cast<sockaddr*>(&a), &len);
    port_ = ntohs(a.sin_port);
    acceptor_ = std::thread([this] { AcceptLoop(); });
  }
  ~RemoteSite() {
    stopping_ = true;
    shutdown(listener_, SHUT_RDWR);
    close(listener_);
    acceptor_.join();
    std::vector<std::thread> workers;
    {
      std::lock_guard lock(mutex_);
      workers.swap(workers_);
    }
    for (auto& t : workers) t.join();
  }

  void Set(const std::string& target, RemoteReply reply) {
    std::lock_guard lock(mutex_);
    replies_[target] = std::move(reply);
  }
  std::string Url(const std::string& target) const {
    return "http://127.0.0.1:" + std::to_string(port_) + target;
  }
  int port() const { return port_; }
  std::vector<std::string> Requests() const {
    std::lock_guard lock(mutex_);
    return requests_;
  }

 private:
  void AcceptLoop() {
    while (!stopping_) {
      int fd = accept(listener_, nullptr, nullptr);
      if (fd < 0) {
        if (stopping_) return;
        continue;
      }
      std::lock_guard lock(mutex_);
      workers_.emplace_back([this, fd] { Serve(fd); });
    }
  }

  static void SendAll(int fd, const std::string& bytes) {
    size_t sent = 0;
    while (sent < bytes.size()) {
      ssize_t n = send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
      if (n <= 0) return;
      sent += static_cast<size_t>(n);
    }
  }

  void Serve(int fd) {
    std::string request;
    char buf[4096];
    while (request.find("\r\n\r\n") == std::string::npos) {
      ssize_t n = recv(fd, buf, sizeof buf, 0);
      if (n <= 0) break;
      request.append(buf, static_cast<size_t>(n));
    }
    size_t sp1 = request.find(' '), sp2 = request.find(' ', sp1 + 1);
    std::string target = sp1 == std::string::npos ? "" : request.substr(sp1 + 1, sp2 - sp1 - 1);
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
                       " Canned\r\nContent-Type: " + reply.contentType +
                       "\r\nConnection: close\r\n";
    if (!reply.noLength && !reply.stall)
      head += "Content-Length: " + std::to_string(reply.body.size()) + "\r\n";
    for (const auto& h : reply.headers) head += h + "\r\n";
    SendAll(fd, head + "\r\n");
    if (reply.stall) {
      SendAll(fd, reply.body.substr(0, 10));
      while (!stopping_) Wait(20);
    } else {
      SendAll(fd, reply.body);
    }
    close(fd);
  }

  void Wait(int ms) {
    for (int waited = 0; waited < ms && !stopping_; waited += 10)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }

  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> stopping_{false};
  std::thread acceptor_;
  mutable std::mutex mutex_;
  std::vector<std::thread> workers_;
  std::map<std::string, RemoteReply> replies_;
  std::vector<std::string> requests_;
};

}  // namespace ostrakan::testing
