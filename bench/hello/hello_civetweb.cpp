// A second yardstick for the engine's overhead, built when civetweb is installed: civetweb
// alone, answering every request with a five-byte body (keep-alive, TCP_NODELAY).
// Usage: hello_civetweb PORT   (serves until SIGINT or SIGTERM)
#include <civetweb.h>
#include <signal.h>

#include <cstdio>
#include <string>

namespace {

int Hello(mg_connection* conn, void*) {
  mg_response_header_start(conn, 200);
  mg_response_header_add(conn, "Content-Type", "text/plain", -1);
  mg_response_header_add(conn, "Content-Length", "5", -1);
  mg_response_header_send(conn);
  mg_write(conn, "hello", 5);
  return 200;
}

}  // namespace

int main(int argc, char** argv) {
  std::string port = argc > 1 ? std::string("127.0.0.1:") + argv[1] : "127.0.0.1:8081";
  sigset_t stop;
  sigemptyset(&stop);
  sigaddset(&stop, SIGINT);
  sigaddset(&stop, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stop, nullptr);
  mg_init_library(0);
  const char* options[] = {"listening_ports",
                           port.c_str(),
                           "num_threads",
                           "128",
                           "enable_keep_alive",
                           "yes",
                           "keep_alive_timeout_ms",
                           "5000",
                           "tcp_nodelay",
                           "1",
                           nullptr};
  mg_callbacks callbacks{};
  mg_context* ctx = mg_start(&callbacks, nullptr, options);
  if (!ctx) {
    std::fprintf(stderr, "hello_civetweb: cannot listen on %s\n", port.c_str());
    return 1;
  }
  mg_set_request_handler(ctx, "/", &Hello, nullptr);
  std::printf("listening on %s\n", port.c_str());
  std::fflush(stdout);
  int received = 0;
  sigwait(&stop, &received);
  mg_stop(ctx);
  return 0;
}
