// A fixture remote web site on loopback for gathering tests: a small threaded HTTP/1.1 server
// that answers each request target (path with query, else the path alone) with a canned
// reply, and remembers the targets it was asked for (bytes as sent, percent escapes kept).
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <atomic>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>
#include <chrono>
#include <map>
#include <mutex>
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
    acceptor_ = std::thread([this] {
      while (true) {
        boost::asio::ip::tcp::socket socket(io_);
        boost::system::error_code error;
        listener_.accept(socket, error);
        if (stopping_) return;
        std::lock_guard lock(mutex_);
        if (!error) workers_.emplace_back([this, s = std::move(socket)]() mutable { Serve(s); });
      }
    });
  }
  ~RemoteSite() {
    stopping_ = true;
    ::shutdown(listener_.native_handle(), SHUT_RDWR);  // wakes the accept
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
  void Serve(boost::asio::ip::tcp::socket& socket) {
    std::string request;
    boost::system::error_code error;
    boost::asio::read_until(socket, boost::asio::dynamic_buffer(request), "\r\n\r\n", error);
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
    boost::asio::write(socket, boost::asio::buffer(bytes), error);
    if (reply.stall) Wait(1 << 30);
  }

  // Sleeps `ms`, or less when the site is being closed.
  void Wait(int ms) {
    for (int waited = 0; waited < ms && !stopping_; waited += 10)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }

  boost::asio::io_context io_;
  boost::asio::ip::tcp::acceptor listener_{io_, {boost::asio::ip::address_v4::loopback(), 0}};
  const int port_ = listener_.local_endpoint().port();
  std::atomic<bool> stopping_{false};
  std::thread acceptor_;
  mutable std::mutex mutex_;
  std::vector<std::thread> workers_;
  std::map<std::string, RemoteReply> replies_;
  std::vector<std::string> requests_;
};

}  // namespace ostrakan::testing
