// Slow, idle and half-sent connections against the real server: they are closed at their
// deadlines and never stop it answering everyone else.
//
// TIDEWELL_TEST_BINARY=PATH runs these against another build of the server (an older one, to
// see them fail).

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/host/server_process.h"
#include "tests/support/page_text.h"

namespace tidewell {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

std::string Binary() {
  const char* other = std::getenv("TIDEWELL_TEST_BINARY");
  return other != nullptr && *other != '\0' ? other : TIDEWELL_BINARY;
}

// A connection to 127.0.0.1:port, started without waiting for it to complete (a server whose
// backlog is full would otherwise hold the test up), non-blocking from then on.
int StartConnection(int port) {
  int fd = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
  if (fd < 0) return -1;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 &&
      errno != EINPROGRESS) {
    close(fd);
    return -1;
  }
  return fd;
}

// True once the server has closed the connection: a read gives end of file or a reset.
bool ClosedByServer(int fd) {
  pollfd entry{fd, POLLIN, 0};
  if (poll(&entry, 1, 0) <= 0) return false;
  char byte;
  ssize_t n = recv(fd, &byte, 1, MSG_PEEK);
  return n == 0 || (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK);
}

// Everything the server sends until it closes the connection or `wait` passes.
std::string ReadUntilClosed(int fd, milliseconds wait) {
  std::string text;
  Clock::time_point end = Clock::now() + wait;
  while (Clock::now() < end) {
    pollfd entry{fd, POLLIN, 0};
    if (poll(&entry, 1, 50) <= 0) continue;
    char buffer[4096];
    ssize_t n = recv(fd, buffer, sizeof buffer, 0);
    if (n <= 0) break;
    text.append(buffer, static_cast<size_t>(n));
  }
  return text;
}

// A request that never ends: its header grows by a byte at a time.
constexpr std::string_view kEndlessRequest =
    "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Slow: "
    "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa";

// Sends the next byte of kEndlessRequest on the connection; false when it could not.
bool SendNextByte(int fd, size_t& sent) {
  if (sent >= kEndlessRequest.size()) return true;
  ssize_t n = send(fd, kEndlessRequest.data() + sent, 1, MSG_NOSIGNAL);
  if (n == 1) ++sent;
  return n == 1;
}

void RaiseOwnFileLimit() {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
}

class SlowClients : public ::testing::Test {
 protected:
  void SetUp() override {
    RaiseOwnFileLimit();
    folder_ = std::filesystem::path(::testing::TempDir()) /
              ("tidewell_slow_" + std::to_string(getpid()));
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override {
    for (int fd : open_) close(fd);
    server_.reset();
    std::filesystem::remove_all(folder_);
  }

  // Starts the server with `extra` configuration lines; returns its port.
  int Start(const std::string& extra = "") {
    std::string config = (folder_ / "tidewell.conf").string();
    std::ofstream(config) << "Visible = True\nImagePath = images/\n"
                             "ConnectionString = Provider=SQLite;Data Source="
                          << (folder_ / "cal.db").string() << "\n"
                          << "LinkSecret = slow-clients-secret-0123456789\n"
                          << extra;
    server_ = std::make_unique<testing::ServerProcess>(
        Binary(),
        std::vector<std::string>{"serve", "--config", config, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{"TIDEWELL_NOW=2026-11-21 09:30:00"});
    return server_->WaitForPort();
  }

  int Open(int port) {
    int fd = StartConnection(port);
    if (fd >= 0) open_.push_back(fd);
    return fd;
  }

  std::filesystem::path folder_;
  std::unique_ptr<testing::ServerProcess> server_;
  std::vector<int> open_;
};

// 300 connections that say nothing and 300 that send a header byte a second hold no worker:
// ordinary requests beside them are answered, each well within 5 s.
TEST_F(SlowClients, IdleAndTricklingConnectionsLeaveTheServerAnswering) {
  int port = Start();
  ASSERT_NE(port, 0) << server_->Log();
  constexpr int kIdle = 300, kTricklers = 300;
  for (int i = 0; i < kIdle; ++i) ASSERT_GE(Open(port), 0);
  std::vector<int> tricklers;
  for (int i = 0; i < kTricklers; ++i) {
    tricklers.push_back(Open(port));
    ASSERT_GE(tricklers.back(), 0);
  }

  std::atomic<bool> done{false};
  std::atomic<int> bytes_trickled{0};
  std::thread trickle([&] {
    std::vector<size_t> sent(tricklers.size(), 0);
    while (!done) {
      for (size_t i = 0; i < tricklers.size(); ++i) {
        if (SendNextByte(tricklers[i], sent[i])) ++bytes_trickled;
      }
      for (int i = 0; i < 10 && !done; ++i) std::this_thread::sleep_for(milliseconds(100));
    }
  });
  std::this_thread::sleep_for(milliseconds(1500));  // every slow client has started

  int answered = 0;
  for (int i = 0; i < 20 && i - answered < 3; ++i) {  // three misses are proof enough
    httplib::Client client("127.0.0.1", port);
    client.set_connection_timeout(5);
    client.set_read_timeout(5);
    Clock::time_point start = Clock::now();
    auto res = client.Get(i % 2 == 0 ? "/" : "/tidewell.css");
    auto took = Clock::now() - start;
    if (res && res->status == 200 && took < seconds(5)) ++answered;
    EXPECT_TRUE(res) << "request " << i << " got no answer";
    EXPECT_LT(took, seconds(5)) << "request " << i;
  }
  done = true;
  trickle.join();
  EXPECT_EQ(answered, 20);
  EXPECT_GT(bytes_trickled, kTricklers);  // the tricklers really were sending
}

// A client that sends a header byte every second is still closed when the request deadline
// (10 s by default) passes; so are one that trickles its body and one that sends nothing at
// all. None is kept on by the bytes it sends.
TEST_F(SlowClients, TricklingAndSilentConnectionsAreClosedAtTheRequestDeadline) {
  int port = Start();
  ASSERT_NE(port, 0) << server_->Log();
  Clock::time_point start = Clock::now();
  int trickler = Open(port);
  int silent = Open(port);
  ASSERT_GE(trickler, 0);
  ASSERT_GE(silent, 0);

  // A third sends its header whole and then trickles its body.
  int body_trickler = Open(port);
  ASSERT_GE(body_trickler, 0);
  pollfd writable{body_trickler, POLLOUT, 0};
  ASSERT_EQ(poll(&writable, 1, 5000), 1);
  const std::string head = "POST / HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 100\r\n"
                           "Content-Type: application/x-www-form-urlencoded\r\n\r\n";
  ASSERT_EQ(send(body_trickler, head.data(), head.size(), MSG_NOSIGNAL),
            static_cast<ssize_t>(head.size()));

  size_t sent = 0, body_sent = 0;
  std::optional<Clock::duration> trickler_closed, silent_closed, body_trickler_closed;
  Clock::time_point next_byte = start;
  while (Clock::now() - start < seconds(14) &&
         !(trickler_closed && silent_closed && body_trickler_closed)) {
    Clock::time_point now = Clock::now();
    if (now >= next_byte) {
      if (!trickler_closed) SendNextByte(trickler, sent);
      if (!body_trickler_closed && send(body_trickler, "a", 1, MSG_NOSIGNAL) == 1) ++body_sent;
      next_byte = now + seconds(1);
    }
    if (!trickler_closed && ClosedByServer(trickler)) trickler_closed = now - start;
    if (!silent_closed && ClosedByServer(silent)) silent_closed = now - start;
    if (!body_trickler_closed && ClosedByServer(body_trickler)) body_trickler_closed = now - start;
    std::this_thread::sleep_for(milliseconds(20));
  }
  ASSERT_TRUE(trickler_closed) << "a trickling client was still open after 14 s";
  ASSERT_TRUE(silent_closed) << "a silent client was still open after 14 s";
  ASSERT_TRUE(body_trickler_closed) << "a client trickling its body was still open after 14 s";
  EXPECT_GE(*body_trickler_closed, milliseconds(9500));
  EXPECT_LE(*body_trickler_closed, seconds(12));
  EXPECT_GE(body_sent, 9u);
  EXPECT_GE(*trickler_closed, milliseconds(9500));
  EXPECT_LE(*trickler_closed, seconds(12));
  EXPECT_GE(*silent_closed, milliseconds(9500));
  EXPECT_LE(*silent_closed, seconds(12));
  EXPECT_GE(sent, 9u);  // it sent a byte a second all along
}

// Kept alive, a connection carries request after request; once idle longer than IdleTimeout
// it is closed.
TEST_F(SlowClients, KeptAliveConnectionServesRequestsThenClosesWhenIdle) {
  int port = Start("IdleTimeout = 2\n");
  ASSERT_NE(port, 0) << server_->Log();
  int fd = Open(port);
  ASSERT_GE(fd, 0);
  pollfd writable{fd, POLLOUT, 0};
  ASSERT_EQ(poll(&writable, 1, 5000), 1);
  const std::string request = "GET /tidewell.css HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";
  for (int i = 0; i < 2; ++i) {
    ASSERT_EQ(send(fd, request.data(), request.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(request.size()));
    std::string answer;
    Clock::time_point end = Clock::now() + seconds(5);
    while (answer.find(".text") == std::string::npos && Clock::now() < end) {
      answer += ReadUntilClosed(fd, milliseconds(100));
    }
    EXPECT_EQ(answer.rfind("HTTP/1.1 200 OK\r\n", 0), 0u) << answer;
    EXPECT_FALSE(ClosedByServer(fd)) << "closed after request " << i;
  }
  Clock::time_point idle_from = Clock::now();
  while (!ClosedByServer(fd) && Clock::now() - idle_from < seconds(6)) {
    std::this_thread::sleep_for(milliseconds(20));
  }
  auto idle = Clock::now() - idle_from;
  EXPECT_GE(idle, milliseconds(1500));
  EXPECT_LT(idle, seconds(4)) << "an idle kept-alive connection was not closed";
}

// A client that sends many requests at once and reads nothing for a while: the answers fill
// its small receive buffer and the server's send buffer, so most of them cannot leave when
// they are made and wait for the client. Once it reads, every answer arrives whole and in
// order, and the connection stays open.
TEST_F(SlowClients, AnswersAClientIsSlowToReadArriveWholeOnceItReads) {
  int port = Start();
  ASSERT_NE(port, 0) << server_->Log();
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  ASSERT_GE(fd, 0);
  open_.push_back(fd);
  const int small = 2048;
  ASSERT_EQ(setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &small, sizeof small), 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  constexpr int kRequests = 1000;
  std::string requests;
  for (int i = 0; i < kRequests; ++i) requests += "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";
  ASSERT_EQ(send(fd, requests.data(), requests.size(), MSG_NOSIGNAL),
            static_cast<ssize_t>(requests.size()));
  std::this_thread::sleep_for(seconds(1));

  std::string answers;
  Clock::time_point end = Clock::now() + seconds(20);
  while (testing::Count(answers, "</html>") < kRequests && Clock::now() < end) {
    answers += ReadUntilClosed(fd, milliseconds(100));
  }
  // About 4 MB of answers against a 2 KB receive buffer: more than the server's send buffer
  // takes (4 MB at most on Linux, and far less while the client's window stays small).
  EXPECT_GT(answers.size(), 2u * 1024 * 1024);
  EXPECT_EQ(testing::Count(answers, "HTTP/1.1 200 OK\r\n"), static_cast<size_t>(kRequests));
  EXPECT_EQ(testing::Count(answers, "</html>"), static_cast<size_t>(kRequests));
  EXPECT_FALSE(ClosedByServer(fd));
}

// SIGTERM answers what was already sent before the process goes: 40 refused logins (each
// checks an Argon2 hash, some 20 ms of work, so most are still waiting for a worker when the
// signal comes) all get their whole answer, with "Connection: close"; connections that sent
// nothing are closed at once rather than at their deadline; the process then exits cleanly.
TEST_F(SlowClients, AStopAnswersTheRequestsAlreadySentThenExits) {
  int port = Start();
  ASSERT_NE(port, 0) << server_->Log();
  std::vector<int> busy, idle;
  for (int i = 0; i < 40; ++i) busy.push_back(Open(port));
  for (int i = 0; i < 5; ++i) idle.push_back(Open(port));
  for (int fd : busy) {
    pollfd writable{fd, POLLOUT, 0};
    ASSERT_EQ(poll(&writable, 1, 5000), 1);
  }
  std::this_thread::sleep_for(milliseconds(300));  // all accepted and waiting
  for (size_t i = 0; i < busy.size(); ++i) {
    const std::string body = "username=nobody" + std::to_string(i) + "&password=wrong&login=y";
    const std::string request = "POST / HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                                "Content-Type: application/x-www-form-urlencoded\r\n"
                                "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    ASSERT_EQ(send(busy[i], request.data(), request.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(request.size()));
  }
  const Clock::time_point stopped_at = Clock::now();
  server_->Send(SIGTERM);

  for (int fd : idle) {
    while (!ClosedByServer(fd) && Clock::now() - stopped_at < seconds(5)) {
      std::this_thread::sleep_for(milliseconds(10));
    }
    EXPECT_LT(Clock::now() - stopped_at, seconds(3)) << "an idle connection outlived the stop";
  }
  int answered = 0;
  for (int fd : busy) {
    const std::string answer = ReadUntilClosed(fd, seconds(10));
    const size_t body_at = answer.find("\r\n\r\n");
    const size_t length_at = answer.find("Content-Length: ");
    if (answer.rfind("HTTP/1.1 200 OK\r\n", 0) != 0 || body_at == std::string::npos ||
        length_at == std::string::npos) {
      ADD_FAILURE() << "no whole answer: " << answer.substr(0, 200);
      continue;
    }
    EXPECT_NE(answer.find("Connection: close\r\n"), std::string::npos);
    EXPECT_EQ(answer.size() - body_at - 4, std::stoul(answer.substr(length_at + 16)));
    ++answered;
  }
  EXPECT_EQ(answered, 40);
  EXPECT_EQ(server_->Stop(SIGTERM), 0) << server_->Log();
  EXPECT_LT(Clock::now() - stopped_at, seconds(10));
  EXPECT_NE(server_->Log().find("tidewell: SIGTERM received, stopping"), std::string::npos);
}

// Past MaxConnections a newcomer is closed at once instead of waiting in the backlog; once
// connections go, newcomers are served again.
TEST_F(SlowClients, ConnectionsPastTheLimitAreClosedAtOnce) {
  int port = Start("MaxConnections = 20\n");
  ASSERT_NE(port, 0) << server_->Log();
  // Twenty-five at once: whichever the server accepts last, five are past the limit and closed
  // at once, while the twenty it keeps wait for their request deadline (ten seconds).
  std::vector<int> held;
  for (int i = 0; i < 25; ++i) held.push_back(Open(port));
  for (int fd : held) ASSERT_GE(fd, 0);
  auto closed = [&held] {
    int n = 0;
    for (int fd : held) n += ClosedByServer(fd) ? 1 : 0;
    return n;
  };
  Clock::time_point start = Clock::now();
  while (closed() < 5 && Clock::now() - start < seconds(3)) {
    std::this_thread::sleep_for(milliseconds(20));
  }
  EXPECT_EQ(closed(), 5) << "the connections past the limit were kept";
  EXPECT_TRUE(server_->WaitForLog("20 connections open, refusing more")) << server_->Log();

  for (int fd : held) shutdown(fd, SHUT_RDWR);
  std::this_thread::sleep_for(milliseconds(300));
  auto res = httplib::Client("127.0.0.1", port).Get("/tidewell.css");
  ASSERT_TRUE(res);
  EXPECT_EQ(res->status, 200);
}

// "Expect: 100-continue": the server says go on once the header passes, then answers the
// whole request.
TEST_F(SlowClients, ExpectContinueIsAnsweredBeforeTheBody) {
  int port = Start();
  ASSERT_NE(port, 0) << server_->Log();
  int fd = Open(port);
  pollfd writable{fd, POLLOUT, 0};
  ASSERT_EQ(poll(&writable, 1, 5000), 1);
  const std::string body = "login=Login&username=nobody&password=x";
  const std::string head = "POST / HTTP/1.1\r\nHost: 127.0.0.1\r\nExpect: 100-continue\r\n"
                           "Content-Type: application/x-www-form-urlencoded\r\n"
                           "Connection: close\r\nContent-Length: " +
                           std::to_string(body.size()) + "\r\n\r\n";
  ASSERT_EQ(send(fd, head.data(), head.size(), MSG_NOSIGNAL), static_cast<ssize_t>(head.size()));
  std::string interim;
  Clock::time_point end = Clock::now() + seconds(5);
  while (interim.find("\r\n\r\n") == std::string::npos && Clock::now() < end) {
    pollfd readable{fd, POLLIN, 0};
    if (poll(&readable, 1, 50) <= 0) continue;
    char buffer[256];
    ssize_t n = recv(fd, buffer, sizeof buffer, 0);
    if (n <= 0) break;
    interim.append(buffer, static_cast<size_t>(n));
  }
  EXPECT_EQ(interim, "HTTP/1.1 100 Continue\r\n\r\n");
  ASSERT_EQ(send(fd, body.data(), body.size(), MSG_NOSIGNAL), static_cast<ssize_t>(body.size()));
  std::string answer = ReadUntilClosed(fd, seconds(5));
  EXPECT_EQ(answer.rfind("HTTP/1.1 200 OK\r\n", 0), 0u) << answer.substr(0, 200);
  EXPECT_NE(answer.find("<!-- LoginScreen  Start -->"), std::string::npos);
}

TEST_F(SlowClients, OversizedHeadersAreRefusedWith431) {
  int port = Start();
  ASSERT_NE(port, 0) << server_->Log();
  int fd = Open(port);
  pollfd writable{fd, POLLOUT, 0};
  ASSERT_EQ(poll(&writable, 1, 5000), 1);
  std::string request = "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Big: " +
                        std::string(20 * 1024, 'b') + "\r\n\r\n";
  size_t at = 0;
  while (at < request.size()) {
    ssize_t n = send(fd, request.data() + at, request.size() - at, MSG_NOSIGNAL);
    if (n <= 0) break;
    at += static_cast<size_t>(n);
  }
  std::string answer = ReadUntilClosed(fd, seconds(5));
  EXPECT_EQ(answer.rfind("HTTP/1.1 431", 0), 0u) << answer.substr(0, 200);
}

TEST_F(SlowClients, BodiesPastOneMebibyteAreRefusedWith413) {
  int port = Start();
  ASSERT_NE(port, 0) << server_->Log();
  httplib::Client client("127.0.0.1", port);
  auto fits = client.Post("/", "login=Login&x=" + std::string(1000 * 1000, 'x'),
                          "application/x-www-form-urlencoded");
  ASSERT_TRUE(fits);
  EXPECT_EQ(fits->status, 200);
  auto too_big = client.Post("/", "x=" + std::string(1024 * 1024, 'x'),
                             "application/x-www-form-urlencoded");
  ASSERT_TRUE(too_big);
  EXPECT_EQ(too_big->status, 413);
  auto after = httplib::Client("127.0.0.1", port).Get("/");
  ASSERT_TRUE(after);
  EXPECT_EQ(after->status, 200);
}

}  // namespace
}  // namespace tidewell
