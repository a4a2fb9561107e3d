// Load for a Tidewell server on this machine: holds idle and trickling connections open (and
// opens them again when the server closes them, so their number stays up) while a few
// clients make ordinary requests as fast as answers come, and reports the ordinary requests'
// latency.
//
//   slow_clients_load --port N [--idle 500] [--tricklers 500] [--clients 4] [--seconds 20]
//                     [--path /] [--fresh]
//
// --fresh opens a new connection for every ordinary request instead of keeping one alive.
// Only 127.0.0.1 is ever contacted.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Options {
  int port = 0;
  int idle = 500;
  int tricklers = 500;
  int clients = 4;
  int seconds = 20;
  std::string path = "/";
  bool fresh = false;
};

Options Parse(int argc, char** argv) {
  Options o;
  for (int i = 1; i < argc; ++i) {
    std::string name = argv[i];
    auto value = [&]() -> std::string {
      if (i + 1 >= argc) {
        std::fprintf(stderr, "%s needs a value\n", name.c_str());
        std::exit(2);
      }
      return argv[++i];
    };
    if (name == "--port") o.port = std::atoi(value().c_str());
    else if (name == "--idle") o.idle = std::atoi(value().c_str());
    else if (name == "--tricklers") o.tricklers = std::atoi(value().c_str());
    else if (name == "--clients") o.clients = std::atoi(value().c_str());
    else if (name == "--seconds") o.seconds = std::atoi(value().c_str());
    else if (name == "--path") o.path = value();
    else if (name == "--fresh") o.fresh = true;
    else {
      std::fprintf(stderr, "unknown option %s\n", name.c_str());
      std::exit(2);
    }
  }
  if (o.port <= 0 || o.clients <= 0 || o.seconds <= 0) {
    std::fprintf(stderr, "usage: slow_clients_load --port N [--idle N] [--tricklers N] "
                         "[--clients N] [--seconds N] [--path P] [--fresh]\n");
    std::exit(2);
  }
  return o;
}

sockaddr_in Loopback(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

// A connection started without waiting for it to complete.
int StartConnection(int port) {
  int fd = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
  if (fd < 0) return -1;
  sockaddr_in address = Loopback(port);
  if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 &&
      errno != EINPROGRESS) {
    close(fd);
    return -1;
  }
  return fd;
}

int Connect(int port) {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  if (fd < 0) return -1;
  sockaddr_in address = Loopback(port);
  if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    close(fd);
    return -1;
  }
  int one = 1;
  setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
  timeval timeout{10, 0};
  setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
  return fd;
}

bool Closed(int fd) {
  pollfd entry{fd, POLLIN, 0};
  if (poll(&entry, 1, 0) <= 0) return false;
  char buffer[512];
  ssize_t n = recv(fd, buffer, sizeof buffer, MSG_DONTWAIT);
  return n == 0 || (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK);
}

constexpr char kEndless[] = "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Slow: ";

// Keeps `idle` silent and `tricklers` one-byte-a-second connections open until `stop`.
void HoldSlowClients(const Options& o, std::atomic<bool>& stop, std::atomic<long>& reopened,
                     std::atomic<int>& open_now) {
  struct Slow {
    int fd = -1;
    bool trickles = false;
    size_t sent = 0;
  };
  std::vector<Slow> slow;
  for (int i = 0; i < o.idle + o.tricklers; ++i) {
    slow.push_back({StartConnection(o.port), i >= o.idle, 0});
  }
  while (!stop) {
    int open = 0;
    for (Slow& s : slow) {
      if (s.fd < 0 || Closed(s.fd)) {
        if (s.fd >= 0) close(s.fd), ++reopened;
        s.fd = StartConnection(o.port);
        s.sent = 0;
      }
      if (s.fd >= 0) ++open;
      if (s.trickles && s.fd >= 0) {
        char byte = s.sent < sizeof kEndless - 1 ? kEndless[s.sent] : 'a';
        if (send(s.fd, &byte, 1, MSG_NOSIGNAL | MSG_DONTWAIT) == 1) ++s.sent;
      }
    }
    open_now = open;
    for (int i = 0; i < 10 && !stop; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  for (Slow& s : slow) {
    if (s.fd >= 0) close(s.fd);
  }
}

// Reads one answer; false when the connection failed. `keep` tells whether it stays open.
bool ReadAnswer(int fd, bool& keep) {
  std::string text;
  char buffer[65536];
  size_t header_end = std::string::npos;
  size_t length = 0;
  while (true) {
    ssize_t n = recv(fd, buffer, sizeof buffer, 0);
    if (n <= 0) return false;
    text.append(buffer, static_cast<size_t>(n));
    if (header_end == std::string::npos) {
      header_end = text.find("\r\n\r\n");
      if (header_end == std::string::npos) continue;
      if (text.compare(0, 12, "HTTP/1.1 200") != 0) return false;
      const char* cl = strcasestr(text.c_str(), "\r\nContent-Length:");
      if (cl == nullptr) return false;
      length = std::strtoul(cl + 17, nullptr, 10);
      keep = strcasestr(text.c_str(), "\r\nConnection: close") == nullptr;
    }
    if (text.size() >= header_end + 4 + length) return true;
  }
}

}  // namespace

int main(int argc, char** argv) {
  Options o = Parse(argc, argv);
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);

  std::atomic<bool> stop_slow{false}, stop_load{false};
  std::atomic<long> reopened{0};
  std::atomic<int> slow_open{0};
  std::thread slow([&] { HoldSlowClients(o, stop_slow, reopened, slow_open); });
  std::this_thread::sleep_for(std::chrono::seconds(2));  // the slow clients are in

  std::mutex mutex;
  std::vector<double> latencies_ms;
  std::atomic<long> errors{0};
  const std::string request = "GET " + o.path + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";
  std::vector<std::thread> clients;
  Clock::time_point start = Clock::now();
  for (int c = 0; c < o.clients; ++c) {
    clients.emplace_back([&] {
      std::vector<double> mine;
      int fd = -1;
      while (!stop_load) {
        Clock::time_point sent = Clock::now();
        if (fd < 0) fd = Connect(o.port);
        bool keep = false;
        bool ok = fd >= 0 &&
                  send(fd, request.data(), request.size(), MSG_NOSIGNAL) ==
                      static_cast<ssize_t>(request.size()) &&
                  ReadAnswer(fd, keep);
        if (ok) {
          mine.push_back(std::chrono::duration<double, std::milli>(Clock::now() - sent).count());
        } else {
          ++errors;
          std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        if (!ok || !keep || o.fresh) {
          if (fd >= 0) close(fd);
          fd = -1;
        }
      }
      if (fd >= 0) close(fd);
      std::lock_guard lock(mutex);
      latencies_ms.insert(latencies_ms.end(), mine.begin(), mine.end());
    });
  }
  std::this_thread::sleep_for(std::chrono::seconds(o.seconds));
  stop_load = true;
  for (std::thread& t : clients) t.join();
  double elapsed = std::chrono::duration<double>(Clock::now() - start).count();
  int still_open = slow_open;
  stop_slow = true;
  slow.join();

  std::sort(latencies_ms.begin(), latencies_ms.end());
  auto at = [&](double q) {
    if (latencies_ms.empty()) return 0.0;
    return latencies_ms[std::min(latencies_ms.size() - 1,
                                 static_cast<size_t>(q * static_cast<double>(latencies_ms.size())))];
  };
  std::printf("slow clients: %d idle + %d trickling (%d open at the end, %ld reopened after the "
              "server closed them)\n",
              o.idle, o.tricklers, still_open, reopened.load());
  std::printf("ordinary: %d clients, %s, GET %s for %.1f s\n", o.clients,
              o.fresh ? "a new connection each" : "kept alive", o.path.c_str(), elapsed);
  std::printf("requests %zu  errors %ld  %.0f req/s\n", latencies_ms.size(), errors.load(),
              static_cast<double>(latencies_ms.size()) / elapsed);
  std::printf("latency ms: p50 %.2f  p90 %.2f  p99 %.2f  max %.2f\n", at(0.50), at(0.90),
              at(0.99), latencies_ms.empty() ? 0.0 : latencies_ms.back());
  return errors > 0 && latencies_ms.empty() ? 1 : 0;
}
