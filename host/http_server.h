#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/access_log.h"
#include "host/ip_networks.h"

namespace tidewell {

// One HTTP request as the server read it, whole: headers and body are complete before anyone
// sees it.
struct HttpRequest {
  std::string method;   // "GET", "HEAD", "POST", ...
  std::string target;   // as sent: "/cal/default.asp?WS=..."
  std::string path;     // the target without its query string
  std::string version;  // "HTTP/1.1"
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  // The client's IP address as text ("127.0.0.1", "::1"): the peer's, or the one a trusted
  // proxy forwarded for (host/client_address.h).
  std::string remote_address;
  std::string peer_address;  // the socket's other end

  // The first header of that name (without regard to case), or "".
  std::string Header(std::string_view name) const;
};

// What a handler answers. `log_screen` is what the access line shows in its screen column:
// the screen the component drew, or "-" for anything that is not a page; `log_statements` the
// statements the page ran on the database, "-" likewise.
struct HttpAnswer {
  int status = 200;
  std::string content_type = "text/html; charset=utf-8";
  std::string body;
  std::vector<std::pair<std::string, std::string>> headers;
  std::string log_screen = "-";
  std::string log_statements = "-";
};

// A plain-text answer: the short pages for errors and refusals.
HttpAnswer PlainAnswer(int status, std::string text);

// Limits that keep slow, idle and greedy clients from holding the server.
struct HttpServerLimits {
  // From a connection's start (or the first byte of a later request on it) until the request's
  // headers and body have all arrived. A deadline, not an inactivity timer: a client that
  // trickles bytes does not extend it.
  std::chrono::milliseconds request_timeout{std::chrono::seconds(10)};
  // How long a kept-alive connection may wait for its next request, and how long a client may
  // take to receive an answer.
  std::chrono::milliseconds idle_timeout{std::chrono::seconds(30)};
  size_t header_limit = 16 * 1024;
  size_t body_limit = 1024 * 1024;
  // Open connections beyond this are closed as soon as they are accepted.
  size_t max_connections = 10000;
  // Threads that run the handler (which may block, on a database for instance). Reading and
  // writing never wait on them: the sockets are served by `io_threads` event-loop threads.
  size_t workers = 8;
  size_t io_threads = 2;
  // How long a stop waits for the requests already read to be answered.
  std::chrono::milliseconds drain_timeout{std::chrono::seconds(10)};
};

// Who the client is, and who hears of each answer.
struct HttpServerAccess {
  // Peers whose X-Forwarded-For names the client (host/client_address.h).
  std::vector<IpNetwork> trusted_proxies;
  // Called once per answer as it leaves, on an event-loop thread, so it must not block. When
  // unset, the access line goes to standard error in text.
  std::function<void(const AccessRecord&)> on_answer;
};

// An event-driven HTTP/1.1 server (Boost.Beast on Asio). Connections are read and written on a
// couple of event-loop threads without blocking; only a complete request is handed to the
// handler, on a worker thread, and its answer is written back on the connection's own strand.
// So a connection that is idle, slow or half-sent costs a socket and a few kilobytes, never a
// worker.
//
// For every request it answers: HEAD like GET without the body; a request whose headers or
// body break the limits with 431 or 413; an unreadable request with 400; a handler that throws
// with a plain 500 page (the exception's text goes to the log only). `common_headers` go on
// every answer, the server's own error answers included. Every answer is reported to
// `access.on_answer` (host/access_log.h): time, client, method, path without the query string,
// screen, status, bytes, statements, duration.
class HttpServer {
 public:
  using Handler = std::function<HttpAnswer(const HttpRequest&)>;

  HttpServer(Handler handler, HttpServerLimits limits,
             std::vector<std::pair<std::string, std::string>> common_headers,
             HttpServerAccess access = {});
  ~HttpServer();

  // Binds HOST:PORT (an IPv6 address without brackets; port 0 takes a free port) and returns
  // the port bound. Throws std::runtime_error when it cannot.
  int Bind(const std::string& host, int port);

  // Serves until Stop(), SIGINT or SIGTERM; a stop signal is announced on standard error.
  // Stray SIGUSR1 and SIGPIPE are ignored. A stop takes no new connection, closes the idle
  // ones and answers the requests already read (drain_timeout at most) before Run returns.
  void Run();

  // Ends Run from any thread.
  void Stop();

  // The server's insides (host/http_server.cc); named here only so its connections can reach it.
  struct State;

 private:
  std::unique_ptr<State> state_;
};

// Raises the soft limit of open files to the hard limit, so that many connections fit. Returns
// the soft limit in force afterwards.
size_t RaiseOpenFileLimit();

// `text` with control characters and non-ASCII bytes written as %XX and cut to `limit`
// characters, so that a client cannot forge or flood log lines.
std::string LogSafe(std::string_view text, size_t limit = 256);

}  // namespace tidewell
