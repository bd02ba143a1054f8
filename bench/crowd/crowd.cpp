// A crowd of idle and slow clients held against a server on 127.0.0.1, cheaply: one thread and
// epoll, so that the crowd costs the machine as little as an attacker's would (node, which the
// benchmark drives, spent a core on it). IDLE connections each send one request for PATH and
// then nothing (keep-alive); SLOW ones send a request line and then a header line every 2
// seconds, never ending the head (slowloris). Whenever the server closes one, another takes
// its place. Prints "ready N" once every connection has been opened, and on SIGTERM or SIGINT
// "open N replaced R" before it exits.
// Usage: crowd PORT IDLE SLOW [PATH]
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

volatile sig_atomic_t stopping = 0;

struct Client {
  bool slow = false;
  bool sent = false;
};

int port = 0;
int epoll = -1;
std::string idleRequest, slowRequest;
std::unordered_map<int, Client> clients;
long replaced = 0;

void Open(bool slow) {
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
  if (fd < 0) return;
  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = htons(static_cast<uint16_t>(port));
  to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ::connect(fd, reinterpret_cast<sockaddr*>(&to), sizeof to);
  epoll_event ev{};
  ev.events = EPOLLIN | EPOLLOUT | EPOLLRDHUP;
  ev.data.fd = fd;
  ::epoll_ctl(epoll, EPOLL_CTL_ADD, fd, &ev);
  clients[fd] = Client{slow, false};
}

void Close(int fd, bool replace) {
  const bool slow = clients[fd].slow;
  clients.erase(fd);
  ::close(fd);
  if (replace && !stopping) {
    ++replaced;
    Open(slow);
  }
}

void Send(int fd, const std::string& text) {
  if (::send(fd, text.data(), text.size(), MSG_NOSIGNAL) < 0) Close(fd, true);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: crowd PORT IDLE SLOW [PATH]\n");
    return 2;
  }
  port = std::atoi(argv[1]);
  const long idle = std::atol(argv[2]), slow = std::atol(argv[3]);
  const std::string path = argc > 4 ? argv[4] : "/admin/css/style.css";
  idleRequest = "GET " + path + " HTTP/1.1\r\nHost: x\r\n\r\n";
  slowRequest = "GET " + path + " HTTP/1.1\r\nHost: x\r\n";
  rlimit files{};
  ::getrlimit(RLIMIT_NOFILE, &files);
  files.rlim_cur = files.rlim_max;
  ::setrlimit(RLIMIT_NOFILE, &files);
  ::signal(SIGTERM, [](int) { stopping = 1; });
  ::signal(SIGINT, [](int) { stopping = 1; });
  epoll = ::epoll_create1(0);

  using Clock = std::chrono::steady_clock;
  long opened = 0;
  bool ready = false;
  Clock::time_point nextTrickle = Clock::now() + std::chrono::seconds(2);
  epoll_event events[256];
  while (!stopping) {
    // Open the crowd 500 at a time, within the server's listen backlog.
    for (int i = 0; i < 500 && opened < idle + slow; ++i, ++opened) Open(opened < slow);
    if (!ready && opened == idle + slow) {
      ready = true;
      std::printf("ready %zu\n", clients.size());
      std::fflush(stdout);
    }
    const int n = ::epoll_wait(epoll, events, 256, ready ? 200 : 50);
    for (int i = 0; i < n; ++i) {
      const int fd = events[i].data.fd;
      auto it = clients.find(fd);
      if (it == clients.end()) continue;
      if (events[i].events & (EPOLLERR | EPOLLHUP | EPOLLRDHUP)) {
        Close(fd, true);
        continue;
      }
      if (events[i].events & EPOLLIN) {
        char sink[16384];
        const ssize_t got = ::recv(fd, sink, sizeof sink, 0);
        if (got <= 0) {
          Close(fd, true);
          continue;
        }
      }
      if ((events[i].events & EPOLLOUT) && !it->second.sent) {
        it->second.sent = true;
        epoll_event ev{};
        ev.events = EPOLLIN | EPOLLRDHUP;
        ev.data.fd = fd;
        ::epoll_ctl(epoll, EPOLL_CTL_MOD, fd, &ev);
        Send(fd, it->second.slow ? slowRequest : idleRequest);
      }
    }
    if (Clock::now() >= nextTrickle) {
      nextTrickle += std::chrono::seconds(2);
      std::vector<int> slowOnes;
      for (const auto& [fd, c] : clients)
        if (c.slow && c.sent) slowOnes.push_back(fd);
      for (int fd : slowOnes)
        if (clients.count(fd)) Send(fd, "X-Slow: 1\r\n");
    }
  }
  std::printf("open %zu replaced %ld\n", clients.size(), replaced);
  return 0;
}
