// One HTTP/1.1 connection, served asynchronously on its I/O thread: it reads requests
// (RequestReader), hands each to the server's handler, writes the answers in order and keeps
// the connection for the next request. While it waits for a request it holds no buffer and
// no thread. Refused requests get their answer and a lingering close: the sending side is
// shut and what the client still sends is read and dropped for a short while, so the answer
// is not destroyed by a reset.
//
// Time-outs: the first byte of a request may take `keepAliveTimeout` (`requestTimeout` for a
// connection's first request); from then on the head and the body must arrive within
// `requestTimeout` (408 when the head did not), and an answer must leave within it. The waits
// for a first byte and for a head end at a point of their second half drawn for each
// connection, so that connections opened together do not all end together.
#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "engine/http_exchange.h"
#include "engine/request_reader.h"

namespace ostrakan::engine {

struct ConnectionOptions {
  size_t maxBodyBytes = 8u << 20;
  std::chrono::milliseconds requestTimeout{10000};
  std::chrono::milliseconds keepAliveTimeout{5000};
};

class Connection : public std::enable_shared_from_this<Connection> {
 public:
  // Called once with the answer, from any thread. A page thread that calls it writes the
  // answer itself when the socket takes it at once, and waits for the next request on the
  // connection's behalf, so a page costs no hand-off back to an I/O thread.
  using Reply = std::function<void(HttpResponse)>;
  // Answers a request (remoteAddr is the peer's address), now or later through `reply`. Called
  // without the connection's lock, so that a page thread it wakes finds the lock free.
  using Handler = std::function<void(HttpRequest request, Reply reply)>;

  // Told when the connection is gone (from its destructor).
  using Gone = std::function<void(Connection*)>;

  // `peer` is the client's address.
  Connection(boost::asio::ip::tcp::socket socket, std::string peer,
             const ConnectionOptions& options, Handler handler, Gone gone);
  ~Connection();

  // On the connection's I/O thread: waits for the first request.
  void Start();
  // The server stops (thread-safe): a connection waiting for a request closes at once, one
  // being answered closes after its answer.
  void Stop();

 private:
  enum class Phase { Request, Answer, Linger, Closed };
  enum class Wait { FirstByte, Head, Body };
  void ReadRequest();
  void WaitForBytes();
  void OnReadable(const boost::system::error_code& ec);
  void OnRequest(RequestHead head);
  void Deliver(HttpResponse response);  // from any thread
  void Respond(HttpResponse response);
  void SendOut();
  bool SendFilePiece();  // false: the file ended early and the connection is closed
  void AnswerDone();
  void Refuse(HeadError error);  // a copy: the reader that holds it goes
  void Linger();
  void Close();
  void CloseFile();
  void Arm(std::chrono::milliseconds after);
  void ArmAt(std::chrono::steady_clock::time_point deadline);
  std::chrono::milliseconds Spread(std::chrono::milliseconds wait) const;
  void Disarm();
  void WaitForDeadline();
  void OnTimeout();
  // Runs `step` on the connection's I/O thread, under the connection's lock.
  template <class F>
  void OnIoThread(F&& step);
  // Runs `step` under the connection's lock, then gives a request it read to the handler.
  template <class F>
  void Locked(F&& step);
  // Gives the request read under `lock` to the handler, with the lock let go meanwhile.
  void HandOver(std::unique_lock<std::recursive_mutex>& lock);

  boost::asio::ip::tcp::socket socket_;
  boost::asio::steady_timer timer_;
  ConnectionOptions options_;
  Handler handler_;
  Gone gone_;
  std::string peer_;
  unsigned share_;  // the part of its waits for a request a connection allows, in thousandths
  // Held by whoever acts for the connection: its I/O thread, or a page thread delivering an
  // answer.
  std::recursive_mutex mutex_;
  std::optional<HttpRequest> read_;  // read, for the handler once the lock is let go

  Phase phase_ = Phase::Request;
  using Deadline = std::chrono::steady_clock::time_point;
  Deadline deadline_ = Deadline::max();  // when the time-out strikes; max: none
  Deadline answerBy_;                    // when the answer under way must have left
  bool timerWaiting_ = false;
  unsigned timerRound_ = 0;  // a timer that fires for an earlier round is stale
  bool first_ = true;        // no request has been read yet
  bool stopping_ = false;
  Wait waitingFor_ = Wait::FirstByte;
  bool refusing_ = false;  // the answer is a refusal: a lingering close follows
  bool writing_ = false;
  std::string in_;  // received and not yet read
  std::optional<RequestReader> reader_;

  // The answer under way.
  bool keepAlive_ = true;
  bool headOnly_ = false;
  std::string out_;
  int file_ = -1;  // a file body's descriptor while it is sent
  size_t fileLeft_ = 0;
};

}  // namespace ostrakan::engine
