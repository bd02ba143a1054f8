// The yardstick for the engine's overhead: a bare Boost.Beast server on the same I/O model as
// the engine (one thread per core, each running an io_context of its own, connections given
// to them in turn, keep-alive, TCP_NODELAY), answering every request with a 32-byte page and
// doing nothing else.
// Usage: hello_beast PORT   (prints "ready" once it listens; serves until SIGINT or SIGTERM)
#include <utility>  // before Asio: Boost 1.74's awaitable.hpp uses std::exchange without it

#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using tcp = asio::ip::tcp;

namespace {

class Session : public std::enable_shared_from_this<Session> {
 public:
  explicit Session(tcp::socket socket) : stream_(std::move(socket)) {}
  void Read() {
    request_ = {};
    http::async_read(stream_, buffer_, request_,
                     [self = shared_from_this()](beast::error_code ec, size_t) {
                       if (ec) return;
                       self->Write();
                     });
  }

 private:
  void Write() {
    response_ = {};
    response_.result(http::status::ok);
    response_.version(request_.version());
    response_.set(http::field::content_type, "text/plain");
    response_.body() = "hello, this is thirty-two bytes\n";
    response_.keep_alive(request_.keep_alive());
    response_.prepare_payload();
    http::async_write(stream_, response_,
                      [self = shared_from_this()](beast::error_code ec, size_t) {
                        if (ec || !self->response_.keep_alive()) return;
                        self->Read();
                      });
  }

  beast::tcp_stream stream_;
  beast::flat_buffer buffer_;
  http::request<http::empty_body> request_;
  http::response<http::string_body> response_;
};

using Contexts = std::vector<std::unique_ptr<asio::io_context>>;

void Accept(tcp::acceptor& acceptor, Contexts& contexts, size_t next) {
  asio::io_context& io = *contexts[next % contexts.size()];
  acceptor.async_accept(io, [&, next](beast::error_code ec, tcp::socket socket) {
    if (!ec) {
      socket.set_option(tcp::no_delay(true));
      // Started on the socket's own thread.
      asio::post(socket.get_executor(), [s = std::move(socket)]() mutable {
        std::make_shared<Session>(std::move(s))->Read();
      });
    }
    Accept(acceptor, contexts, next + 1);
  });
}

}  // namespace

int main(int argc, char** argv) {
  unsigned short port = static_cast<unsigned short>(argc > 1 ? std::stoi(argv[1]) : 8081);
  int threads = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
  Contexts contexts;
  for (int i = 0; i < threads; ++i) contexts.push_back(std::make_unique<asio::io_context>(1));
  asio::io_context& io = *contexts[0];
  tcp::acceptor acceptor(io, {asio::ip::make_address("127.0.0.1"), port});
  asio::signal_set stop(io, SIGINT, SIGTERM);
  stop.async_wait([&](beast::error_code, int) {
    for (auto& c : contexts) c->stop();
  });
  Accept(acceptor, contexts, 0);
  std::printf("ready\n");
  std::fflush(stdout);
  std::vector<std::thread> pool;
  std::vector<asio::executor_work_guard<asio::io_context::executor_type>> work;
  for (int i = 1; i < threads; ++i) {
    work.push_back(asio::make_work_guard(*contexts[i]));
    pool.emplace_back([&, i] { contexts[i]->run(); });
  }
  io.run();
  for (auto& t : pool) t.join();
}
