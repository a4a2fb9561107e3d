#include "host/http_server.h"

#include <signal.h>
#include <sys/resource.h>

#include <atomic>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/write.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <cstdio>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>

#include "host/client_address.h"
#include "runtime/clock.h"
#include "runtime/dates.h"
#include "runtime/strings.h"

namespace tidewell {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using tcp = boost::asio::ip::tcp;
using Clock = std::chrono::steady_clock;
using HeaderList = std::vector<std::pair<std::string, std::string>>;

std::string HttpRequest::Header(std::string_view name) const {
  for (const auto& [key, value] : headers) {
    if (EqualsIgnoringCase(key, name)) return value;
  }
  return "";
}

std::string LogSafe(std::string_view text, size_t limit) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string safe;
  for (unsigned char c : text) {
    if (safe.size() >= limit) {
      safe += "...";
      break;
    }
    if (c < 0x21 || c >= 0x7f || c == '"' || c == '%') {
      safe += '%';
      safe += kHex[c >> 4];
      safe += kHex[c & 15];
    } else {
      safe += static_cast<char>(c);
    }
  }
  return safe;
}

size_t RaiseOpenFileLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 1024;
  if (limit.rlim_cur < limit.rlim_max) {
    rlimit raised = limit;
    raised.rlim_cur = limit.rlim_max;
    if (setrlimit(RLIMIT_NOFILE, &raised) == 0) limit = raised;
  }
  return limit.rlim_cur == RLIM_INFINITY ? size_t{1} << 20 : static_cast<size_t>(limit.rlim_cur);
}

namespace {

// Files the process needs beside its connections: the database, its journal, log, pipes.
constexpr size_t kFilesKeptForTheProcess = 64;

// "2026-11-21 09:30:00", whatever the regional settings.
std::string LogTime() {
  Date now = Now();
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", Year(now), Month(now), Day(now),
                Hour(now), Minute(now), Second(now));
  return text;
}

std::string_view View(beast::string_view text) {
  return {text.data(), text.size()};
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// The target's path without the query string, %XX decoded (a malformed escape stays as
// written).
std::string PathOf(std::string_view target) {
  std::string_view raw = target.substr(0, target.find('?'));
  std::string path;
  for (size_t i = 0; i < raw.size(); ++i) {
    if (raw[i] == '%' && i + 2 < raw.size() && HexValue(raw[i + 1]) >= 0 && HexValue(raw[i + 2]) >= 0) {
      path += static_cast<char>(HexValue(raw[i + 1]) * 16 + HexValue(raw[i + 2]));
      i += 2;
    } else {
      path += raw[i];
    }
  }
  return path;
}

// A request the parser refused (as opposed to a connection that ended or timed out).
bool IsUnreadableRequest(beast::error_code ec) {
  return ec && ec.category() == http::make_error_code(http::error::bad_target).category() &&
         ec != http::error::end_of_stream && ec != http::error::partial_message;
}

}  // namespace

HttpAnswer PlainAnswer(int status, std::string text) {
  HttpAnswer answer;
  answer.status = status;
  answer.content_type = "text/plain; charset=utf-8";
  answer.body = std::move(text);
  return answer;
}

struct HttpServer::State {
  State(Handler handler, HttpServerLimits limits, HeaderList common_headers,
        HttpServerAccess access)
      : limits(limits),
        handler(std::move(handler)),
        common_headers(std::move(common_headers)),
        access(std::move(access)),
        workers(limits.workers == 0 ? 1 : limits.workers),
        acceptor(asio::make_strand(io)),
        signals(io, SIGINT, SIGTERM) {}

  // Sessions still queued in `io` are destroyed with it and count themselves out, so the
  // counters are declared before it.
  HttpServerLimits limits;
  std::atomic<size_t> connections{0};
  std::atomic<bool> stopping{false};
  // Requests whose first bytes have arrived and whose answer is not yet written to the end: a
  // stop waits for them.
  std::atomic<size_t> requests_under_way{0};
  // How to close each connection that waits for its next request, by the connection's number:
  // a stop closes them at once instead of waiting out their idle time.
  std::mutex idle_mutex;
  std::map<uint64_t, std::function<void()>> idle_closers;
  std::atomic<uint64_t> next_connection_number{0};
  Clock::time_point last_limit_warning{};
  Handler handler;
  HeaderList common_headers;
  HttpServerAccess access;
  asio::io_context io;
  // Declared after `io`: joined before it goes, so no worker posts into a destroyed context.
  asio::thread_pool workers;
  tcp::acceptor acceptor;
  asio::signal_set signals;
  std::optional<asio::steady_timer> accept_pause;
  std::optional<asio::steady_timer> drain_timer;
};

namespace {

// One connection: reads a request under a deadline, hands it to a worker, writes the answer,
// and waits (without a worker) for the next one while the client keeps the connection alive.
class Session : public std::enable_shared_from_this<Session> {
 public:
  Session(tcp::socket socket, HttpServer::State& server)
      : stream_(std::move(socket)), server_(server), number_(++server.next_connection_number) {
    ++server_.connections;
    boost::system::error_code ignored;
    peer_address_ = stream_.socket().remote_endpoint(ignored).address().to_string();
  }
  ~Session() {
    LeaveIdle();
    EndRequest();
    --server_.connections;
  }

  void Start() {
    asio::dispatch(stream_.get_executor(), [self = shared_from_this()] { self->AwaitFirstRequest(); });
  }

 private:
  // Between requests: wait up to the idle timeout for the next request's first bytes, then
  // give the rest of it the request deadline.
  void AwaitNextRequest() {
    if (buffer_.size() > 0) {  // pipelined: already here
      BeginRequest();
      return ReadRequest();
    }
    stream_.expires_after(server_.limits.idle_timeout);
    AwaitFirstBytes(/*restart_deadline=*/true);
  }

  // The first request's deadline runs from the connection's start: a client that connects
  // and says nothing is closed at it.
  void AwaitFirstRequest() {
    stream_.expires_after(server_.limits.request_timeout);
    AwaitFirstBytes(/*restart_deadline=*/false);
  }

  // Until a request's first bytes arrive the connection is idle, and a stop closes it.
  void AwaitFirstBytes(bool restart_deadline) {
    if (server_.stopping) return Close();
    EnterIdle();
    stream_.async_read_some(
        buffer_.prepare(server_.limits.header_limit),
        [self = shared_from_this(), restart_deadline](beast::error_code ec, size_t bytes) {
          self->LeaveIdle();
          if (ec) return self->Close();
          self->buffer_.commit(bytes);
          self->BeginRequest();
          if (restart_deadline) self->stream_.expires_after(self->server_.limits.request_timeout);
          self->ReadRequest();
        });
  }

  void BeginRequest() {
    if (under_way_) return;
    under_way_ = true;
    ++server_.requests_under_way;
  }

  void EndRequest() {
    if (!under_way_) return;
    under_way_ = false;
    --server_.requests_under_way;
  }

  // While idle, a stop may close the connection: on its strand, and only if still idle then.
  void EnterIdle() {
    idle_ = true;
    std::weak_ptr<Session> weak = weak_from_this();
    auto closer = [weak] {
      if (std::shared_ptr<Session> self = weak.lock()) {
        asio::post(self->stream_.get_executor(), [self] {
          // Bytes already waiting are a request on its way in: it is read and answered.
          beast::error_code ignored;
          if (self->idle_ && self->stream_.socket().available(ignored) == 0) self->Close();
        });
      }
    };
    std::lock_guard lock(server_.idle_mutex);
    server_.idle_closers[number_] = std::move(closer);
  }

  void LeaveIdle() {
    if (!idle_) return;
    idle_ = false;
    std::lock_guard lock(server_.idle_mutex);
    server_.idle_closers.erase(number_);
  }

  void ReadRequest() {
    parser_.emplace();
    parser_->header_limit(static_cast<uint32_t>(server_.limits.header_limit));
    parser_->body_limit(server_.limits.body_limit);
    http::async_read_header(stream_, buffer_, *parser_,
                            [self = shared_from_this()](beast::error_code ec, size_t) {
                              self->OnHeader(ec);
                            });
  }

  // A client that asked to hear "100 Continue" before sending its body hears it now that the
  // header has passed the limits. The request's deadline keeps running.
  void OnHeader(beast::error_code ec) {
    if (ec || parser_->is_done()) return OnRequest(ec);
    if (!beast::iequals(parser_->get()[http::field::expect], "100-continue")) return ReadBody();
    static constexpr std::string_view kContinue = "HTTP/1.1 100 Continue\r\n\r\n";
    asio::async_write(stream_, asio::buffer(kContinue.data(), kContinue.size()),
                      [self = shared_from_this()](beast::error_code ec, size_t) {
                        if (ec) return self->Close();
                        self->ReadBody();
                      });
  }

  void ReadBody() {
    http::async_read(stream_, buffer_, *parser_,
                     [self = shared_from_this()](beast::error_code ec, size_t) {
                       self->OnRequest(ec);
                     });
  }

  void OnRequest(beast::error_code ec) {
    if (ec == http::error::header_limit) {
      return Refuse(431, "Request header fields too large.\n");
    }
    if (ec == http::error::body_limit) return Refuse(413, "Request body too large.\n");
    if (IsUnreadableRequest(ec)) return Refuse(400, "Bad request.\n");
    if (ec) return Close();  // closed by the client, deadline passed, or a socket error
    stream_.expires_never();  // the worker's time is not the client's
    started_ = Clock::now();
    auto request = std::make_shared<HttpRequest>(TakeRequest());
    keep_alive_ = parser_->get().keep_alive();
    asio::post(server_.workers, [self = shared_from_this(), request] {
      HttpAnswer answer = self->RunHandler(*request);
      asio::post(self->stream_.get_executor(),
                 [self, request, answer = std::move(answer)]() mutable {
                   self->Write(*request, std::move(answer));
                 });
    });
  }

  HttpRequest TakeRequest() {
    http::request<http::string_body>& message = parser_->get();
    HttpRequest request;
    request.method = std::string(message.method_string());
    request.target = std::string(message.target());
    request.path = PathOf(request.target);
    request.version = message.version() == 10 ? "HTTP/1.0" : "HTTP/1.1";
    for (const auto& field : message) {
      request.headers.emplace_back(std::string(field.name_string()), std::string(field.value()));
    }
    request.body = std::move(message.body());
    request.peer_address = peer_address_;
    request.remote_address = ClientAddressOf(message);
    return request;
  }

  // Every X-Forwarded-For header, in order, read as one list.
  std::string ClientAddressOf(const http::request<http::string_body>& message) const {
    std::string forwarded_for;
    auto [first, last] = message.equal_range("X-Forwarded-For");
    for (auto field = first; field != last; ++field) {
      if (!forwarded_for.empty()) forwarded_for += ',';
      forwarded_for += View(field->value());
    }
    return ClientAddress(peer_address_, forwarded_for, server_.access.trusted_proxies);
  }

  HttpAnswer RunHandler(const HttpRequest& request) {
    try {
      return server_.handler(request);
    } catch (const std::exception& e) {
      std::fprintf(stderr, "tidewell: request failed: %s\n", e.what());
    } catch (...) {
      std::fprintf(stderr, "tidewell: request failed\n");
    }
    return PlainAnswer(500, "The server could not answer this request.\n");
  }

  // Answers a request that could not be read, then closes: the rest of it is not worth reading.
  void Refuse(int status, std::string text) {
    HttpRequest request;
    request.peer_address = peer_address_;
    request.remote_address = ClientAddress(peer_address_, "", {});
    if (parser_ && parser_->is_header_done()) {
      request.method = std::string(parser_->get().method_string());
      request.path = PathOf(View(parser_->get().target()));
      request.remote_address = ClientAddressOf(parser_->get());
    }
    request.version = "HTTP/1.1";
    keep_alive_ = false;
    refused_ = true;
    started_ = Clock::now();
    Write(request, PlainAnswer(status, std::move(text)));
  }

  void Write(const HttpRequest& request, HttpAnswer answer) {
    auto response = std::make_shared<http::response<http::string_body>>(
        static_cast<http::status>(answer.status), 11);
    for (const auto& [name, value] : server_.common_headers) response->set(name, value);
    for (const auto& [name, value] : answer.headers) response->set(name, value);
    if (!answer.content_type.empty()) {
      response->set(http::field::content_type, answer.content_type);
    }
    size_t bytes = answer.body.size();
    response->body() = std::move(answer.body);
    response->prepare_payload();
    if (request.method == "HEAD") response->body().clear();  // Content-Length stays the GET's
    bool keep_alive = keep_alive_ && !server_.stopping;
    response->keep_alive(keep_alive);

    // Logged as the answer leaves, so that the line is there by the time the client has it.
    AccessRecord record;
    record.time = LogTime();
    record.remote = request.remote_address;
    record.method = request.method;
    record.path = LoggedPath(request.path);
    record.version = request.version;
    record.status = answer.status;
    record.bytes = request.method == "HEAD" ? 0 : bytes;
    record.screen = std::move(answer.log_screen);
    record.statements = std::move(answer.log_statements);
    Report(std::move(record));
    stream_.expires_after(server_.limits.idle_timeout);
    http::async_write(stream_, *response,
                      [self = shared_from_this(), response, keep_alive](beast::error_code ec,
                                                                       size_t) {
                        self->EndRequest();
                        if (ec) return self->Close();
                        if (self->refused_) return self->LingerThenClose();
                        if (!keep_alive) return self->Close();
                        self->AwaitNextRequest();
                      });
  }

  void Report(AccessRecord record) {
    record.duration_ms = std::chrono::duration<double, std::milli>(Clock::now() - started_).count();
    if (server_.access.on_answer) return server_.access.on_answer(record);
    std::fputs(AccessLine(record, LogFormat::kText).c_str(), stderr);
  }

  // After a refusal the client may still be sending what was refused. Closing with its bytes
  // unread would reset the connection and could throw away the answer before the client reads
  // it, so the rest is read and dropped for a moment first.
  void LingerThenClose() {
    beast::error_code ignored;
    stream_.socket().shutdown(tcp::socket::shutdown_send, ignored);
    stream_.expires_after(std::chrono::seconds(2));
    Drain();
  }

  void Drain() {
    buffer_.clear();
    stream_.async_read_some(buffer_.prepare(64 * 1024),
                            [self = shared_from_this()](beast::error_code ec, size_t bytes) {
                              self->drained_ += bytes;
                              if (ec || self->drained_ > 4 * 1024 * 1024) return self->Close();
                              self->Drain();
                            });
  }

  void Close() {
    EndRequest();
    beast::error_code ignored;
    stream_.socket().shutdown(tcp::socket::shutdown_both, ignored);
    stream_.close();
  }

  beast::tcp_stream stream_;
  HttpServer::State& server_;
  beast::flat_buffer buffer_;
  std::optional<http::request_parser<http::string_body>> parser_;
  std::string peer_address_;
  const uint64_t number_;
  bool idle_ = false;       // waiting for a request's first bytes
  bool under_way_ = false;  // counted in the server's requests_under_way
  bool keep_alive_ = false;
  bool refused_ = false;
  size_t drained_ = 0;
  Clock::time_point started_;
};

void Accept(HttpServer::State& server);

// Accepting failed, most likely for want of file descriptors: try again shortly rather than
// spin.
void PauseAccepting(HttpServer::State& server) {
  server.accept_pause.emplace(server.acceptor.get_executor());
  server.accept_pause->expires_after(std::chrono::milliseconds(100));
  server.accept_pause->async_wait([&server](beast::error_code ec) {
    if (!ec && !server.stopping) Accept(server);
  });
}

void Accept(HttpServer::State& server) {
  server.acceptor.async_accept(
      asio::make_strand(server.io), [&server](beast::error_code ec, tcp::socket socket) {
        if (server.stopping) return;
        if (ec) return PauseAccepting(server);
        if (server.connections >= server.limits.max_connections) {
          // Full: the newcomer is closed at once rather than left waiting in the backlog.
          socket.close(ec);
          Clock::time_point now = Clock::now();
          if (now - server.last_limit_warning > std::chrono::minutes(1)) {
            server.last_limit_warning = now;
            std::fprintf(stderr, "tidewell: %zu connections open, refusing more\n",
                         server.limits.max_connections);
          }
        } else {
          socket.set_option(tcp::no_delay(true), ec);
          std::make_shared<Session>(std::move(socket), server)->Start();
        }
        Accept(server);
      });
}

}  // namespace

HttpServer::HttpServer(Handler handler, HttpServerLimits limits, HeaderList common_headers,
                       HttpServerAccess access)
    : state_(std::make_unique<State>(std::move(handler), limits, std::move(common_headers),
                                     std::move(access))) {
  // A write to a connection the client has closed must fail, not end the process; a stray
  // SIGUSR1 must neither.
  ::signal(SIGPIPE, SIG_IGN);
  ::signal(SIGUSR1, SIG_IGN);
  size_t files = RaiseOpenFileLimit();
  size_t room = files > kFilesKeptForTheProcess * 2 ? files - kFilesKeptForTheProcess : files / 2;
  if (state_->limits.max_connections > room) {
    std::fprintf(stderr, "tidewell: %zu open files allowed, so at most %zu connections\n", files,
                 room);
    state_->limits.max_connections = room;
  }
}

HttpServer::~HttpServer() {
  Stop();
  state_->workers.join();
}

int HttpServer::Bind(const std::string& host, int port) {
  try {
    tcp::resolver resolver(state_->io);
    auto found = resolver.resolve(host, std::to_string(port), tcp::resolver::passive);
    if (found.empty()) throw std::runtime_error("no address");
    tcp::endpoint endpoint = found.begin()->endpoint();
    tcp::acceptor& acceptor = state_->acceptor;
    acceptor.open(endpoint.protocol());
    acceptor.set_option(asio::socket_base::reuse_address(true));
    acceptor.bind(endpoint);
    acceptor.listen(asio::socket_base::max_listen_connections);
    return acceptor.local_endpoint().port();
  } catch (const std::exception& e) {
    throw std::runtime_error("cannot listen on " + host + ":" + std::to_string(port) + ": " +
                             e.what());
  }
}

void HttpServer::Run() {
  State& state = *state_;
  state.signals.async_wait([this](beast::error_code ec, int signal) {
    if (ec) return;
    std::fprintf(stderr, "tidewell: %s received, stopping\n",
                 signal == SIGINT ? "SIGINT" : "SIGTERM");
    Stop();
  });
  Accept(state);
  std::vector<std::thread> threads;
  for (size_t i = 1; i < state.limits.io_threads; ++i) {
    threads.emplace_back([&state] { state.io.run(); });
  }
  state.io.run();
  for (std::thread& thread : threads) thread.join();
}

namespace {

// Ends the event loops once no request is under way, or at the deadline.
void StopWhenDrained(HttpServer::State& state, Clock::time_point deadline) {
  if (state.requests_under_way == 0 || Clock::now() >= deadline) return state.io.stop();
  state.drain_timer->expires_after(std::chrono::milliseconds(20));
  state.drain_timer->async_wait([&state, deadline](beast::error_code) {
    StopWhenDrained(state, deadline);
  });
}

}  // namespace

void HttpServer::Stop() {
  State& state = *state_;
  if (state.stopping.exchange(true)) return;
  // No new connections; idle ones close now; requests already read are answered (with
  // "Connection: close") for up to drain_timeout, then the rest is dropped.
  asio::post(state.acceptor.get_executor(), [&state] {
    beast::error_code ignored;
    state.acceptor.close(ignored);
    state.signals.cancel(ignored);
    std::map<uint64_t, std::function<void()>> idle;
    {
      std::lock_guard lock(state.idle_mutex);
      idle.swap(state.idle_closers);
    }
    for (auto& [number, close] : idle) close();
    state.drain_timer.emplace(state.acceptor.get_executor());
    StopWhenDrained(state, Clock::now() + state.limits.drain_timeout);
  });
}

}  // namespace tidewell
