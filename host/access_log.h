#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tidewell {

// One answered request, as the access log and the metrics see it. Nothing here comes from the
// query string, the body or the cookies: links carry signed keys and forms carry passwords.
struct AccessRecord {
  std::string time;    // "2026-11-21 09:30:00", local time
  std::string remote;  // the client's address (host/client_address.h)
  std::string method;  // "" when the request could not be read that far
  std::string path;    // without the query string, %XX decoded, LoggedPath
  std::string version;
  int status = 0;
  size_t bytes = 0;              // of the body sent
  std::string screen = "-";      // the screen drawn, "-" for anything that is not a page
  std::string statements = "-";  // statements the page ran, "-" likewise
  double duration_ms = 0;
};

// The path as the access log shows it: a feed address's token is its whole secret, so
// everything after "/feed/" becomes "..." ("/cal/feed/...").
std::string LoggedPath(std::string_view path);

// The access log's line formats (the LogFormat key): words, or one JSON object a line.
enum class LogFormat { kText, kJson };

// The record as one line, newline included. Text:
//   2026-11-21 09:30:00 127.0.0.1 "GET / HTTP/1.1" 200 5120 screen=0 statements=3 4.2ms
// JSON, with the fields time, remote, method, path, status, bytes, screen, statements (a number,
// or null when no page ran) and duration_ms:
//   {"time":"2026-11-21 09:30:00","remote":"127.0.0.1","method":"GET","path":"/",...}
// Either way the method and path are cut short and cannot break the line.
std::string AccessLine(const AccessRecord& record, LogFormat format);

// `text` as the inside of a JSON string: quotes, backslashes and control characters escaped,
// valid UTF-8 kept, any other byte written as U+FFFD; cut to `limit` bytes of input.
std::string JsonEscaped(std::string_view text, size_t limit = 256);

}  // namespace tidewell
