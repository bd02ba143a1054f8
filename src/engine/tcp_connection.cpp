#include "engine/tcp_connection.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <cerrno>
#include <random>

#include "engine/response_head.h"

namespace ostrakan::engine {
namespace {

namespace asio = boost::asio;
using boost::system::error_code;

constexpr size_t kReadPiece = 16384;
constexpr size_t kFilePiece = 65536;
constexpr std::chrono::milliseconds kLinger{2000};
constexpr std::chrono::milliseconds kLastWrite{1000};  // for an answer while the server stops
constexpr int kMaxDepth = 8;  // requests handed over in one turn, one pipelined after another

// How much of its waits for a request a connection allows: a part of up to a half is cut off,
// drawn once per connection. Connections that arrived together (a crowd opened at once) would
// otherwise all time out together, and their clients all come back together: a burst of
// accepts and requests that the I/O threads serve before the requests of the connections
// already open. Drawn once, a connection's deadlines only move later from one request to the
// next, so its timer is never moved earlier (cancelling the wait under way) while it is busy.
unsigned DrawShare() {
  thread_local std::minstd_rand random{std::random_device{}()};
  return 500 + static_cast<unsigned>(random() % 501);  // thousandths
}

HttpResponse Refusal(const HeadError& e) {
  return HttpResponse::Plain(e.status, std::to_string(e.status) + " " + StatusText(e.status) +
                                           "\nThe request has " + e.why + ".");
}

}  // namespace

Connection::Connection(asio::ip::tcp::socket socket, std::string peer,
                       const ConnectionOptions& options, Handler handler, Gone gone)
    : socket_(std::move(socket)),
      timer_(socket_.get_executor()),
      options_(options),
      handler_(std::move(handler)),
      gone_(std::move(gone)),
      peer_(std::move(peer)),
      share_(DrawShare()) {}

std::chrono::milliseconds Connection::Spread(std::chrono::milliseconds wait) const {
  return wait * share_ / 1000;
}

Connection::~Connection() {
  CloseFile();
  if (gone_) gone_(this);
}

void Connection::CloseFile() {
  if (file_ >= 0) ::close(file_);
  file_ = -1;
}

template <class F>
void Connection::OnIoThread(F&& step) {
  asio::post(socket_.get_executor(),
             [self = shared_from_this(), step = std::forward<F>(step)]() mutable {
               self->Locked([&] { step(*self); });
             });
}

template <class F>
void Connection::Locked(F&& step) {
  std::unique_lock lock(mutex_);
  step();
  HandOver(lock);
}

void Connection::HandOver(std::unique_lock<std::recursive_mutex>& lock) {
  // The connection this thread runs the handler for: an answer given from inside it (a file,
  // a refusal) is sent at once, and the request after it is taken by the loop below.
  thread_local Connection* handling = nullptr;
  if (handling == this) return;
  for (int round = 0; read_; ++round) {
    // Pipelined requests answered at once, one after another: after a few the rest wait
    // their turn on the I/O thread, behind the other connections.
    if (round == kMaxDepth) return OnIoThread([](Connection&) {});
    HttpRequest request = std::move(*read_);
    read_.reset();
    lock.unlock();
    Connection* outer = std::exchange(handling, this);
    handler_(std::move(request),
             [self = shared_from_this()](HttpResponse r) { self->Deliver(std::move(r)); });
    handling = outer;
    lock.lock();
  }
}

void Connection::Start() {
  error_code ignored;
  socket_.non_blocking(true, ignored);
  Locked([&] { ReadRequest(); });
}

void Connection::Stop() {
  OnIoThread([](Connection& c) {
    Connection* self = &c;
    self->stopping_ = true;
    if (self->phase_ == Phase::Request || self->phase_ == Phase::Linger) {
      self->Close();
    } else if (self->phase_ == Phase::Answer) {
      self->keepAlive_ = false;
      if (self->writing_) self->Arm(kLastWrite);
    }
  });
}

// The time-out moves several times per request (waiting, reading, answering); moving the
// timer itself each time would cancel and queue a wait every time. Only the deadline moves:
// a wait that ends before it waits again, and the timer is moved only to an earlier time.
void Connection::Arm(std::chrono::milliseconds after) {
  ArmAt(std::chrono::steady_clock::now() + after);
}

void Connection::ArmAt(Deadline at) {
  deadline_ = at;
  if (timerWaiting_ && timer_.expiry() <= deadline_) return;
  WaitForDeadline();
}

void Connection::WaitForDeadline() {
  unsigned round = ++timerRound_;
  timerWaiting_ = true;
  timer_.expires_at(deadline_);  // a wait for a later time ends as stale
  timer_.async_wait([self = shared_from_this(), round](const error_code& ec) {
    self->Locked([&] {
      if (round != self->timerRound_) return;
      self->timerWaiting_ = false;
      if (ec || self->deadline_ == Deadline::max()) return;
      if (std::chrono::steady_clock::now() < self->deadline_) return self->WaitForDeadline();
      self->OnTimeout();
    });
  });
}

void Connection::Disarm() {
  deadline_ = Deadline::max();  // a wait under way ends without effect
}

void Connection::OnTimeout() {
  if (phase_ == Phase::Request && waitingFor_ != Wait::FirstByte) {
    error_code ignored;
    socket_.cancel(ignored);  // the wait for bytes ends without effect
    Refuse({408, "not arrived in time"});
  } else {
    Close();
  }
}

void Connection::ReadRequest() {
  phase_ = Phase::Request;
  if (stopping_) return Close();
  if (!reader_) {
    reader_.emplace(options_.maxBodyBytes);
    waitingFor_ = Wait::FirstByte;
    // A new connection's first wait is armed by WaitForBytes.
    if (!first_) Arm(Spread(options_.keepAliveTimeout));
  }
  RequestReader::State state = reader_->Read(in_);
  if (waitingFor_ == Wait::FirstByte && reader_->started()) {
    waitingFor_ = Wait::Head;
    Arm(Spread(options_.requestTimeout));
  }
  switch (state) {
    case RequestReader::State::Refused:
      return Refuse(reader_->refusal());
    case RequestReader::State::Done: {
      RequestHead head = reader_->TakeRequest();
      reader_.reset();
      return OnRequest(std::move(head));
    }
    case RequestReader::State::HeadDone:
      if (waitingFor_ != Wait::Body) {
        waitingFor_ = Wait::Body;
        Arm(options_.requestTimeout);
        // A client that asked for it waits for this before it sends the body.
        const RequestHead& head = reader_->head();
        if (head.expectContinue && head.framing != BodyFraming::None && in_.empty()) {
          static const std::string kContinue = "HTTP/1.1 100 Continue\r\n\r\n";
          asio::async_write(socket_, asio::buffer(kContinue),
                            [self = shared_from_this()](const error_code& ec, size_t) {
                              self->Locked([&] {
                                if (ec) return self->Close();
                                if (self->phase_ == Phase::Request) self->WaitForBytes();
                              });
                            });
          return;
        }
      }
      return WaitForBytes();
    case RequestReader::State::Head:
      return WaitForBytes();
  }
}

void Connection::WaitForBytes() {
  // Only a new connection has no deadline yet.
  if (deadline_ == Deadline::max()) Arm(Spread(options_.requestTimeout));
  socket_.async_wait(asio::ip::tcp::socket::wait_read,
                     [self = shared_from_this()](const error_code& ec) {
                       self->Locked([&] { self->OnReadable(ec); });
                     });
}

void Connection::OnReadable(const error_code& ec) {
  // Whoever cancelled the wait (a time-out, the server stopping) has dealt with the connection.
  if (ec == asio::error::operation_aborted || phase_ == Phase::Closed) return;
  if (ec) return Close();
  // The bytes go through a buffer of the thread, so a connection that waits holds none.
  thread_local char piece[kReadPiece];
  error_code readError;
  size_t n = socket_.read_some(asio::buffer(piece), readError);
  if (readError == asio::error::would_block || readError == asio::error::try_again)
    return WaitForBytes();
  if (readError) return Close();  // the client closed the connection, or it broke
  if (phase_ == Phase::Linger) return WaitForBytes();  // dropped unread
  in_.append(piece, n);
  ReadRequest();
}

void Connection::OnRequest(RequestHead head) {
  phase_ = Phase::Answer;
  Disarm();  // a page may take its time; the answer's writing has a time-out of its own
  first_ = false;
  keepAlive_ = head.keepAlive;
  headOnly_ = head.request.method == "HEAD";
  if (head.asterisk) {
    HttpResponse r;  // OPTIONS *: what the server as a whole accepts
    r.headers = {{"Allow", "GET, HEAD, POST"}};
    return Respond(std::move(r));
  }
  head.request.remoteAddr = peer_;
  read_ = std::move(head.request);  // handed over once the lock is let go (HandOver)
}

void Connection::Deliver(HttpResponse r) {
  Locked([&] { Respond(std::move(r)); });
}

void Connection::Respond(HttpResponse r) {
  if (phase_ != Phase::Answer) return;
  if (stopping_) keepAlive_ = false;
  // Armed only if the answer must wait for the client (SendOut).
  answerBy_ = std::chrono::steady_clock::now() + (stopping_ ? kLastWrite : options_.requestTimeout);
  size_t length = r.body.size();
  fileLeft_ = 0;
  if (r.file) {
    CloseFile();
    file_ = ::open(r.file->c_str(), O_RDONLY | O_CLOEXEC);
    struct stat st;
    length = file_ >= 0 && ::fstat(file_, &st) == 0 ? static_cast<size_t>(st.st_size) : 0;
  }
  out_ = ResponseHead(r, length, keepAlive_);
  if (headOnly_ || IsBodyless(r.status)) return SendOut();
  if (!r.file) {
    out_ += r.body;
    return SendOut();
  }
  fileLeft_ = length;
  if (SendFilePiece()) SendOut();  // the head leaves with the file's first piece
}

bool Connection::SendFilePiece() {
  size_t start = out_.size();
  size_t n = std::min(fileLeft_, kFilePiece);
  out_.resize(start + n);
  ssize_t got = 0;
  do {
    got = ::read(file_, out_.data() + start, n);
  } while (got < 0 && errno == EINTR);
  if (got <= 0 && n > 0) {
    Close();  // the file shrank: the client must see it end short
    return false;
  }
  out_.resize(start + static_cast<size_t>(got));
  fileLeft_ -= static_cast<size_t>(got);
  return true;
}

void Connection::SendOut() {
  // Written at once while the socket takes it (a small answer fits its buffer), on whichever
  // thread holds the connection; the rest is left to the I/O threads.
  while (true) {
    error_code ec;
    size_t n = socket_.write_some(asio::buffer(out_), ec);
    if (ec == asio::error::would_block || ec == asio::error::try_again) break;
    if (ec) return Close();
    out_.erase(0, n);
    if (!out_.empty()) continue;
    if (fileLeft_ == 0) return AnswerDone();
    if (!SendFilePiece()) return;
  }
  writing_ = true;
  ArmAt(answerBy_);
  asio::async_write(socket_, asio::buffer(out_),
                    [self = shared_from_this()](const error_code& ec, size_t) {
                      self->Locked([&] {
                        self->writing_ = false;
                        if (ec || self->phase_ != Phase::Answer) return self->Close();
                        self->out_.clear();
                        if (self->fileLeft_ > 0 && !self->SendFilePiece()) return;
                        self->SendOut();
                      });
                    });
}

void Connection::AnswerDone() {
  CloseFile();
  out_.shrink_to_fit();
  if (refusing_) return Linger();
  if (!keepAlive_ || stopping_) {
    error_code ignored;
    socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
    return Close();
  }
  ReadRequest();  // a pipelined request may be waiting in in_ already
}

void Connection::Refuse(HeadError error) {
  phase_ = Phase::Answer;
  reader_.reset();
  refusing_ = true;
  keepAlive_ = false;
  headOnly_ = false;
  Respond(Refusal(error));
}

void Connection::Linger() {
  phase_ = Phase::Linger;
  if (stopping_) return Close();
  error_code ignored;
  socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
  in_.clear();
  in_.shrink_to_fit();
  Arm(kLinger);
  WaitForBytes();
}

void Connection::Close() {
  if (phase_ == Phase::Closed) return;
  phase_ = Phase::Closed;
  Disarm();
  ++timerRound_;
  timer_.cancel();  // the wait holds the connection
  CloseFile();
  error_code ignored;
  socket_.close(ignored);
}

}  // namespace ostrakan::engine
