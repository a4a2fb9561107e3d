#include "host/server.h"

#include <httplib.h>
#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

#include "host/component_host.h"
#include "host/http_request.h"
#include "host/site_setup.h"
#include "host/static_assets.h"
#include "runtime/clock.h"
#include "runtime/dates.h"

namespace tidewell {
namespace {

struct Endpoint {
  std::string host;
  int port = 0;
};

Endpoint ParseEndpoint(const std::string& listen) {
  size_t colon = listen.rfind(':');
  Endpoint endpoint{listen.substr(0, colon), 0};
  if (endpoint.host.size() > 2 && endpoint.host.front() == '[') {
    endpoint.host = endpoint.host.substr(1, endpoint.host.size() - 2);  // [::1]
  }
  try {
    size_t used = 0;
    endpoint.port = std::stoi(listen.substr(colon + 1), &used);
    if (used != listen.size() - colon - 1 || endpoint.port < 0 || endpoint.port > 65535) throw 0;
  } catch (...) {
    throw std::runtime_error("cannot listen on \"" + listen + "\": expected HOST:PORT");
  }
  return endpoint;
}

// "2026-11-21 09:30:00", whatever the regional settings.
std::string LogTime() {
  Date now = Now();
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", Year(now), Month(now), Day(now),
                Hour(now), Minute(now), Second(now));
  return text;
}

void LogRequest(const httplib::Request& request, const httplib::Response& response) {
  std::fprintf(stderr, "%s %s \"%s %s %s\" %d %zu\n", LogTime().c_str(),
               request.remote_addr.c_str(), request.method.c_str(), request.target.c_str(),
               request.version.c_str(), response.status, response.body.size());
}

// Answers every request: a configured page runs the component, an image or the style sheet
// comes from memory, anything else is not found.
class Site {
 public:
  Site(const SiteConfig& config, LinkSigning signing, StaticAssets assets)
      : config_(config), signing_(std::move(signing)), assets_(std::move(assets)) {}

  void Answer(const httplib::Request& request, httplib::Response& response) const {
    if (const PageConfig* page = config_.FindPage(request.path)) {
      HostAnswer answer = RunComponent(*page, signing_, ToAspRequest(request));
      response.status = answer.status;
      // Moved, not copied as set_content would: a month view is some 55 KB.
      response.body = std::move(answer.body);
      response.set_header("Content-Type", answer.content_type);
      response.set_header("Cache-Control", "no-store");
      return;
    }
    if (request.method != "POST") {  // GET, and HEAD, which the library answers without the body
      if (const StaticAssets::Asset* asset = assets_.Find(request.path)) {
        response.set_content(asset->body, asset->content_type.c_str());
        response.set_header("Cache-Control", "max-age=3600");
        return;
      }
    }
    response.status = 404;
    response.set_content("Not found.\n", "text/plain; charset=utf-8");
  }

 private:
  const SiteConfig& config_;
  LinkSigning signing_;
  StaticAssets assets_;
};

// SIGINT and SIGTERM are blocked in every thread and taken by one watcher thread, so that no
// signal handler has to do anything unsafe. A signal may come before the server has started
// listening, when stop() has nothing to stop yet, so the watcher repeats it until the server
// is done. SIGUSR1 wakes the watcher when the server ended on its own; any other SIGUSR1 is
// ignored.
class StopSignalWatcher {
 public:
  explicit StopSignalWatcher(httplib::Server& server) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, kWakeSignal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    thread_ = std::thread([this, &server, signals] { Watch(server, signals); });
  }

  // Called once the server has stopped listening, whatever the reason.
  ~StopSignalWatcher() {
    server_done_ = true;
    pthread_kill(thread_.native_handle(), kWakeSignal);
    thread_.join();
  }

 private:
  static constexpr int kWakeSignal = SIGUSR1;

  void Watch(httplib::Server& server, sigset_t signals) {
    int received = 0;
    // A SIGUSR1 sent from outside must not end the watch: the server would then never stop.
    do {
      sigwait(&signals, &received);
      if (received == kWakeSignal && server_done_) return;
    } while (received == kWakeSignal);
    std::fprintf(stderr, "tidewell: %s received, stopping\n",
                 received == SIGINT ? "SIGINT" : "SIGTERM");
    while (!server_done_) {
      server.stop();
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  }

  std::atomic<bool> server_done_{false};
  std::thread thread_;
};

}  // namespace

int Serve(const SiteConfig& config, const std::string& listen) {
  Endpoint endpoint = ParseEndpoint(listen);
  PreparedSite prepared = PrepareSite(config);
  Site site(config, prepared.signing, std::move(prepared.assets));

  httplib::Server server;
  server.set_payload_max_length(1 << 20);
  server.set_logger(LogRequest);
  auto answer = [&site](const httplib::Request& req, httplib::Response& res) {
    site.Answer(req, res);
  };
  server.Get(".*", answer);
  server.Post(".*", answer);
  server.set_exception_handler(
      [](const httplib::Request&, httplib::Response& res, std::exception_ptr error) {
        try {
          std::rethrow_exception(error);
        } catch (const std::exception& e) {
          std::fprintf(stderr, "tidewell: request failed: %s\n", e.what());
        } catch (...) {
          std::fprintf(stderr, "tidewell: request failed\n");
        }
        res.status = 500;
        res.set_content("The server could not answer this request.\n", "text/plain; charset=utf-8");
      });

  bool clean = false;
  {
    StopSignalWatcher watcher(server);
    int port = endpoint.port == 0
                   ? server.bind_to_any_port(endpoint.host)
                   : (server.bind_to_port(endpoint.host, endpoint.port) ? endpoint.port : -1);
    if (port < 0) {
      std::fprintf(stderr, "tidewell: cannot listen on %s\n", listen.c_str());
      return 1;
    }
    std::fprintf(stderr, "tidewell: serving http://%s:%d/\n", endpoint.host.c_str(), port);
    clean = server.listen_after_bind();
  }
  std::fprintf(stderr, "tidewell: stopped\n");
  return clean ? 0 : 1;
}

}  // namespace tidewell
